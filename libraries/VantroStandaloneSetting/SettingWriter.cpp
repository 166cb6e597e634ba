#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "VantroStandaloneSetting/SettingFormat.h"
#include "VantroStandaloneSetting/SettingText.h"

namespace vantro {
namespace {

namespace format = setting_format;

constexpr std::string_view indent = "  ";

/// Writes the file as text, element by element: a document tree of a hundred thousand keys would cost several times as
/// much as reading one.
class Writer : public pugi::xml_writer
{
  public:
    /// `size` is about how much will be written.
    explicit Writer(std::size_t size) { text_.reserve(size); }

    /// What has been written; the writer is done with then.
    [[nodiscard]] std::string text() && { return std::move(text_); }

    void declaration() { text_ += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"; }

    void open(std::string_view name, std::string_view attributes = {})
    {
        startLine();
        tag("<", name, attributes);
        text_ += '\n';
        ++depth_;
    }

    void close(std::string_view name)
    {
        --depth_;
        startLine();
        tag("</", name);
        text_ += '\n';
    }

    void element(std::string_view name, std::string_view content)
    {
        startLine();
        tag("<", name);
        appendEscaped(content);
        tag("</", name);
        text_ += '\n';
    }

    void element(std::string_view name, bool isOn) { element(name, std::string_view(isOn ? "true" : "false")); }

    void foreign(const pugi::xml_node& place)
    {
        for (const auto& node : ForeignContent::nodesOf(place)) {
            // As it is: line breaks and indents of our own, for each level of something deeply nested, could make a
            // small document a huge one.
            startLine();
            node.print(*this, "", pugi::format_raw, pugi::encoding_utf8);
            text_ += '\n';
        }
    }

    void write(const void* data, std::size_t size) override { text_.append(static_cast<const char*>(data), size); }

  private:
    void startLine()
    {
        for (unsigned int level = 0; level < depth_; ++level)
            text_ += indent;
    }

    void tag(std::string_view bracket, std::string_view name, std::string_view attributes = {})
    {
        text_ += bracket;
        text_ += name;
        text_ += attributes;
        text_ += '>';
    }

    void appendEscaped(std::string_view content)
    {
        for (const char character : content) {
            if (character == '&')
                text_ += "&amp;";
            else if (character == '<')
                text_ += "&lt;";
            else if (character == '>')
                text_ += "&gt;";
            else
                text_ += character;
        }
    }

    std::string text_;
    unsigned int depth_ = 0;
};

/// `place` is where the foreign content of the element around the list stands.
void writeKeys(Writer& writer, const char* name, const std::vector<YubiKey>& keys, const pugi::xml_node& place)
{
    const auto list = place.child(name);
    const auto places = ForeignContent::placesOf(list, format::yubiKey, keys.size(), [&keys](std::size_t number) {
        return std::to_string(keys[number].serial);
    });
    writer.open(name);
    for (std::size_t number = 0; number < keys.size(); ++number) {
        writer.open(format::yubiKey);
        writer.element(format::serial, std::to_string(keys[number].serial));
        if (!places.empty())
            writer.foreign(places[number]);
        writer.close(format::yubiKey);
    }
    writer.foreign(list);
    writer.close(name);
}

void writeUsers(Writer& writer, const std::vector<UserSetting>& users, const pugi::xml_node& list)
{
    const auto places = ForeignContent::placesOf(list, format::userSetting, users.size(),
                                                 [&users](std::size_t number) { return users[number].account; });
    writer.open(format::users);
    for (std::size_t number = 0; number < users.size(); ++number) {
        const auto place = places.empty() ? pugi::xml_node() : places[number];
        writer.open(format::userSetting);
        writer.element(format::account, std::string_view(users[number].account));
        writeKeys(writer, format::keys, users[number].keys, place);
        writer.foreign(place);
        writer.close(format::userSetting);
    }
    writer.foreign(list);
    writer.close(format::users);
}

/// More than what is known of the document takes, as a rule; what is foreign comes on top.
std::size_t sizeOf(const VantroStandaloneSetting& setting)
{
    constexpr std::size_t sizeOfRest = 1024;
    constexpr std::size_t sizeOfUser = 192;
    constexpr std::size_t sizeOfKey = 96;
    std::size_t keys = setting.masterKeySetting.masterKeys.size() + setting.adminSetting.adminKeys.size();
    for (const UserSetting& user : setting.users)
        keys += user.keys.size();
    return sizeOfRest + setting.users.size() * sizeOfUser + keys * sizeOfKey;
}

} // namespace

std::string serialised(const VantroStandaloneSetting& setting, const ForeignContent& foreign)
{
    const auto root = foreign.file().child(format::root);
    Writer writer(sizeOf(setting));
    writer.declaration();
    writer.open(format::root, " " + std::string(format::version) + "=\"" + std::to_string(settingFormatVersion) + "\"");

    writer.open(format::switchSetting);
    writer.element(format::secureMode, setting.switchSetting.secureMode);
    writer.element(format::screenLock, setting.switchSetting.screenLock);
    writer.foreign(root.child(format::switchSetting));
    writer.close(format::switchSetting);

    writeUsers(writer, setting.users, root.child(format::users));

    const auto masters = root.child(format::masterKeySetting);
    writer.open(format::masterKeySetting);
    writeKeys(writer, format::masterKeys, setting.masterKeySetting.masterKeys, masters);
    writer.foreign(masters);
    writer.close(format::masterKeySetting);

    const auto administrators = root.child(format::adminSetting);
    writer.open(format::adminSetting);
    writer.element(format::toolLoginAuth, setting.adminSetting.toolLoginAuth);
    writeKeys(writer, format::adminKeys, setting.adminSetting.adminKeys, administrators);
    writer.foreign(administrators);
    writer.close(format::adminSetting);

    writer.foreign(root);
    writer.close(format::root);
    writer.foreign(foreign.file());
    return std::move(writer).text();
}

} // namespace vantro
