#include "foundation/XML.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <utility>

#include "foundation/Text.h"

namespace vantro {
namespace {

/// Whether every character reference names a character. The parser itself takes any number: 0 would cut a text short,
/// and half a surrogate pair would make it something that can't be read again.
bool hasOnlyRealReferences(std::string_view bytes)
{
    constexpr std::string_view start = "&#";
    for (auto at = bytes.find(start); at != std::string_view::npos; at = bytes.find(start, at + start.size())) {
        std::string_view digits = bytes.substr(at + start.size());
        const bool isHexadecimal = digits.starts_with('x');
        digits.remove_prefix(isHexadecimal ? 1 : 0);
        std::uint32_t value = 0;
        const char* const last = digits.data() + digits.size();
        const auto [end, error] = std::from_chars(digits.data(), last, value, isHexadecimal ? 16 : 10);
        const bool isReference = error != std::errc::invalid_argument && end != last && *end == ';';
        const bool isCharacter =
            error == std::errc() && value != 0 && value <= 0x10ffff && (value < 0xd800 || value > 0xdfff);
        if (isReference && !isCharacter)
            return false;
    }
    return true;
}

/// A document and the bytes that its texts are parts of.
struct Parsed
{
    std::string bytes;
    pugi::xml_document document;
};

} // namespace

XMLAccessor XML::parse(std::string bytes)
{
    const bool hasNull = bytes.find('\0') != std::string::npos;
    const bool isText = !hasNull && isValidUTF8(bytes) && hasOnlyRealReferences(bytes);
    const auto parsed = std::make_shared<Parsed>(std::move(bytes));
    // The parser works in the bytes themselves, and its zero behind them is one of them.
    parsed->bytes.push_back('\0');
    // As a fragment, text beside the root element is kept and can be refused; else it would be lost in silence.
    constexpr unsigned int flags = pugi::parse_default | pugi::parse_comments | pugi::parse_fragment;
    const auto result =
        parsed->document.load_buffer_inplace(parsed->bytes.data(), parsed->bytes.size(), flags, pugi::encoding_utf8);
    const auto children = parsed->document.children();
    const auto count = [&](pugi::xml_node_type type) {
        return std::count_if(children.begin(), children.end(), [&](const auto& node) { return node.type() == type; });
    };
    const bool hasOneRoot =
        count(pugi::node_element) == 1 && count(pugi::node_pcdata) == 0 && count(pugi::node_cdata) == 0;
    return {std::shared_ptr<const pugi::xml_document>(parsed, &parsed->document), result && hasOneRoot && isText};
}

} // namespace vantro
