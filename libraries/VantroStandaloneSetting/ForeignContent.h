#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "foundation/XML.h"

namespace vantro {

/// What a settings document's file holds beyond what this version knows: elements, comments and texts of another
/// program or a hand, to be written back behind the known content of the element in which they stood. All are in one
/// tree, of the file's shape but with nothing in it except the places where something foreign stands and the way there.
class ForeignContent
{
  public:
    /// Nothing.
    ForeignContent() = default;

    /// Copies of what the file of a valid document holds.
    explicit ForeignContent(const XMLAccessor& accessor);

    [[nodiscard]] bool isEmpty() const { return !tree_.first_child(); }

    /// The place of the file as a whole, around the root element. The place of an element is the child of that name in
    /// the place around it, and null where nothing foreign stands below.
    [[nodiscard]] pugi::xml_node file() const { return tree_.root(); }

    /// What is foreign in a place itself.
    [[nodiscard]] static pugi::xml_object_range<pugi::xml_node_iterator> nodesOf(const pugi::xml_node& place);

    /// The places of the `count` entries of a list, whose elements are called `element`; `nameOf` tells the name by
    /// which an entry is known. None at all where nothing foreign stands in any entry. Entries of the same name are
    /// told apart by how many of them follow: the tool takes the first one of an account out.
    [[nodiscard]] static std::vector<pugi::xml_node> placesOf(const pugi::xml_node& list, const char* element,
                                                              std::size_t count,
                                                              const std::function<std::string(std::size_t)>& nameOf);

  private:
    pugi::xml_document tree_;
};

} // namespace vantro
