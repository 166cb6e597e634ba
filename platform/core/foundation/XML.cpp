#include "foundation/XML.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

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

} // namespace

XMLAccessor XML::parse(std::string_view bytes)
{
    auto document = std::make_shared<pugi::xml_document>();
    // As a fragment, text beside the root element is kept and can be refused; else it would be lost in silence.
    constexpr unsigned int flags = pugi::parse_default | pugi::parse_comments | pugi::parse_fragment;
    const auto result = document->load_buffer(bytes.data(), bytes.size(), flags, pugi::encoding_utf8);
    const auto children = document->children();
    const auto count = [&](pugi::xml_node_type type) {
        return std::count_if(children.begin(), children.end(), [&](const auto& node) { return node.type() == type; });
    };
    const bool hasOneRoot =
        count(pugi::node_element) == 1 && count(pugi::node_pcdata) == 0 && count(pugi::node_cdata) == 0;
    const bool hasNull = bytes.find('\0') != std::string_view::npos;
    return {std::move(document),
            result && hasOneRoot && !hasNull && isValidUTF8(bytes) && hasOnlyRealReferences(bytes)};
}

} // namespace vantro
