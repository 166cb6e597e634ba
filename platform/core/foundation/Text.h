#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vantro {

/// Whether the bytes are well-formed UTF-8 (no overlong forms, surrogates or values beyond U+10FFFF).
[[nodiscard]] bool isValidUTF8(std::string_view text);

/// Whether the text holds a control character: U+0000 to U+001F or U+007F to U+009F.
[[nodiscard]] bool hasControlCharacters(std::string_view text);

/// The text in Unicode normalisation form C. Text that is no valid UTF-8 comes back as it is.
[[nodiscard]] std::string canonicallyNormalised(std::string_view text);

/// Whether two texts are equal under canonical equivalence.
[[nodiscard]] bool isCanonicallyEqual(std::string_view left, std::string_view right);

/// Orders two texts by the code points of their NFC forms: no locale, no case folding.
[[nodiscard]] std::strong_ordering compareCanonically(std::string_view left, std::string_view right);

/// An unsigned 64-bit decimal number: digits with an optional plus sign in front and nothing else; nothing for any
/// other text and beyond the range.
[[nodiscard]] std::optional<std::uint64_t> parseUInt64(std::string_view text);

} // namespace vantro
