#include "foundation/XML.h"

#include <algorithm>
#include <iterator>

#include "foundation/Text.h"

namespace vantro {

XMLAccessor XML::parse(std::string_view bytes)
{
    auto document = std::make_shared<pugi::xml_document>();
    constexpr unsigned int flags = pugi::parse_default | pugi::parse_comments;
    const auto result = document->load_buffer(bytes.data(), bytes.size(), flags, pugi::encoding_utf8);
    const auto children = document->children();
    const auto roots = std::count_if(children.begin(), children.end(),
                                     [](const auto& node) { return node.type() == pugi::node_element; });
    const bool hasNull = bytes.find('\0') != std::string_view::npos;
    return {std::move(document), result && roots == 1 && !hasNull && isValidUTF8(bytes)};
}

} // namespace vantro
