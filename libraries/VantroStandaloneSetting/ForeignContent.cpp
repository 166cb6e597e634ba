#include "VantroStandaloneSetting/ForeignContent.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <unordered_map>

#include "VantroStandaloneSetting/SettingFormat.h"
#include "foundation/Text.h"

namespace vantro {
namespace {

namespace format = setting_format;

/// An element of the format and what it may hold.
struct KnownElement
{
    std::string_view name;
    /// None for an element that holds a text.
    std::span<const KnownElement> children = {};
    /// Of an entry in a list: the name by which it is known.
    std::string (*nameOf)(const pugi::xml_node& element) = nullptr;
};

std::string serialOf(const pugi::xml_node& key)
{
    return std::to_string(parseUInt64(format::textOf(key.child(format::serial)).text).value_or(0));
}

std::string accountOf(const pugi::xml_node& user)
{
    return format::textOf(user.child(format::account)).text;
}

constexpr KnownElement key[] = {{format::serial}};
constexpr KnownElement keys[] = {{format::yubiKey, key, serialOf}};
constexpr KnownElement user[] = {{format::account}, {format::keys, keys}};
constexpr KnownElement users[] = {{format::userSetting, user, accountOf}};
constexpr KnownElement switches[] = {{format::secureMode}, {format::screenLock}};
constexpr KnownElement masters[] = {{format::masterKeys, keys}};
constexpr KnownElement administrators[] = {{format::toolLoginAuth}, {format::adminKeys, keys}};
constexpr KnownElement sections[] = {{format::switchSetting, switches},
                                     {format::users, users},
                                     {format::masterKeySetting, masters},
                                     {format::adminSetting, administrators}};
constexpr KnownElement document[] = {{format::root, sections}};

/// In the tree: the element with a place's foreign nodes, and the attribute with the name of a list's entry.
constexpr const char* nodesElement = "foreign";
constexpr const char* nameAttribute = "name";

/// Makes the names of a list's entries distinct, when it is asked for them from the last one to the first.
class DistinctNames
{
  public:
    [[nodiscard]] std::string next(const std::string& name)
    {
        // No name holds a line break.
        return name + '\n' + std::to_string(seen_[name]++);
    }

  private:
    std::unordered_map<std::string, std::size_t> seen_;
};

/// Null for a foreign node.
const KnownElement* knownAmong(std::span<const KnownElement> elements, const pugi::xml_node& node)
{
    const std::string_view name = node.name();
    const auto found = std::find_if(elements.begin(), elements.end(),
                                    [name](const KnownElement& element) { return element.name == name; });
    return node.type() != pugi::node_element || found == elements.end() ? nullptr : &*found;
}

bool holdsForeign(const pugi::xml_node& parent, std::span<const KnownElement> elements)
{
    for (auto child = parent.first_child(); child; child = child.next_sibling()) {
        const auto* const known = knownAmong(elements, child);
        if (known == nullptr || (!known->children.empty() && holdsForeign(child, known->children)))
            return true;
    }
    return false;
}

std::string trimmed(const std::string& text)
{
    constexpr const char* space = " \t\r\n";
    const auto first = text.find_first_not_of(space);
    return first == std::string::npos ? std::string() : text.substr(first, text.find_last_not_of(space) + 1 - first);
}

void copyForeign(const pugi::xml_node& parent, std::span<const KnownElement> elements, pugi::xml_node place)
{
    pugi::xml_node nodes;
    DistinctNames names;
    for (auto child = parent.last_child(); child; child = child.previous_sibling()) {
        const auto* const known = knownAmong(elements, child);
        if (known == nullptr) {
            if (!nodes)
                nodes = place.append_child(nodesElement);
            auto copy = nodes.prepend_copy(child);
            // The space around a text is the file's layout, which the writer makes anew each time.
            if (copy.type() == pugi::node_pcdata)
                copy.set_value(trimmed(copy.value()).c_str());
            continue;
        }
        const std::string name = known->nameOf == nullptr ? std::string() : names.next(known->nameOf(child));
        if (known->children.empty() || !holdsForeign(child, known->children))
            continue;
        auto inner = place.append_child(known->name.data());
        if (!name.empty())
            inner.append_attribute(nameAttribute) = name.c_str();
        copyForeign(child, known->children, inner);
    }
}

} // namespace

ForeignContent::ForeignContent(const XMLAccessor& accessor)
{
    const auto top = accessor.root().parent();
    if (holdsForeign(top, document))
        copyForeign(top, document, tree_.root());
}

pugi::xml_object_range<pugi::xml_node_iterator> ForeignContent::nodesOf(const pugi::xml_node& place)
{
    return place.child(nodesElement).children();
}

std::vector<pugi::xml_node> ForeignContent::placesOf(const pugi::xml_node& list, const char* element, std::size_t count,
                                                     const std::function<std::string(std::size_t)>& nameOf)
{
    std::unordered_map<std::string, pugi::xml_node> named;
    for (const auto& place : list.children(element))
        named.emplace(place.attribute(nameAttribute).value(), place);
    if (named.empty())
        return {};
    std::vector<pugi::xml_node> places(count);
    DistinctNames names;
    for (std::size_t number = count; number-- > 0;)
        if (const auto found = named.find(names.next(nameOf(number))); found != named.end())
            places[number] = found->second;
    return places;
}

} // namespace vantro
