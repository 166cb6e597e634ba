#include "foundation/Text.h"

#include <algorithm>
#include <charconv>

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

namespace vantro {
namespace {

/// The code point at `position`, which moves behind it; a negative one where the bytes are no UTF-8.
UChar32 nextCodePoint(std::string_view text, std::int32_t& position)
{
    const auto length = static_cast<std::int32_t>(text.size());
    UChar32 codePoint = 0;
// The library's macro narrows on purpose.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
    U8_NEXT(text.data(), position, length, codePoint);
#pragma GCC diagnostic pop
    return codePoint;
}

/// How many bytes of plain ASCII the text begins with, counted by blocks, which takes a fraction of looking at each.
std::int32_t leadingASCII(std::string_view text)
{
    constexpr std::size_t block = 64;
    std::size_t count = 0;
    for (unsigned char any = 0; text.size() - count >= block; count += block) {
        for (std::size_t index = count; index < count + block; ++index)
            any |= static_cast<unsigned char>(text[index]);
        if (any >= 0x80)
            break;
    }
    return static_cast<std::int32_t>(count);
}

/// Plain ASCII, as most names are, is its own normal form.
bool isASCII(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](unsigned char byte) { return byte < 0x80; });
}

} // namespace

bool isValidUTF8(std::string_view text)
{
    const auto length = static_cast<std::int32_t>(text.size());
    for (std::int32_t position = leadingASCII(text); position < length;
         position += leadingASCII(text.substr(static_cast<std::size_t>(position))))
        if (nextCodePoint(text, position) < 0)
            return false;
    return true;
}

bool hasControlCharacters(std::string_view text)
{
    const auto length = static_cast<std::int32_t>(text.size());
    for (std::int32_t position = 0; position < length;) {
        const UChar32 codePoint = nextCodePoint(text, position);
        if ((codePoint >= 0 && codePoint < 0x20) || (codePoint >= 0x7f && codePoint < 0xa0))
            return true;
    }
    return false;
}

std::string canonicallyNormalised(std::string_view text)
{
    if (isASCII(text) || !isValidUTF8(text))
        return std::string(text);
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* const normalizer = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status))
        return std::string(text);
    const auto source =
        icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
    std::string normalised;
    normalizer->normalize(source, status).toUTF8String(normalised);
    return U_FAILURE(status) ? std::string(text) : normalised;
}

bool isCanonicallyEqual(std::string_view left, std::string_view right)
{
    return std::is_eq(compareCanonically(left, right));
}

std::strong_ordering compareCanonically(std::string_view left, std::string_view right)
{
    // The order of UTF-8 bytes is the order of the code points, as long as the bytes count as unsigned.
    const int order = isASCII(left) && isASCII(right)
                          ? left.compare(right)
                          : canonicallyNormalised(left).compare(canonicallyNormalised(right));
    return order <=> 0;
}

std::optional<std::uint64_t> parseUInt64(std::string_view text)
{
    if (text.starts_with('+'))
        text.remove_prefix(1);
    std::uint64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [position, error] = std::from_chars(text.data(), end, value);
    if (text.empty() || error != std::errc() || position != end)
        return std::nullopt;
    return value;
}

} // namespace vantro
