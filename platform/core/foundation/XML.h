#pragma once

#include <memory>
#include <string>

#include <pugixml.hpp>

namespace vantro {

/// The result of an XML parse: the whole document and whether it is well-formed. Copies share the document.
class XMLAccessor
{
  public:
    XMLAccessor(std::shared_ptr<const pugi::xml_document> document, bool isWellFormed)
        : document_(std::move(document)), isWellFormed_(isWellFormed)
    {
    }

    /// Whether the bytes were one well-formed document: valid UTF-8 and exactly one root element.
    [[nodiscard]] bool isWellFormed() const { return isWellFormed_; }

    /// The root element; null when there is none.
    [[nodiscard]] pugi::xml_node root() const { return document_->document_element(); }

  private:
    std::shared_ptr<const pugi::xml_document> document_;
    bool isWellFormed_;
};

/// Parses XML bytes. Texts are not trimmed, name prefixes are kept, no entity beyond XML's own five is known and
/// nothing outside the bytes is ever read.
namespace XML {
[[nodiscard]] XMLAccessor parse(std::string bytes);
}

} // namespace vantro
