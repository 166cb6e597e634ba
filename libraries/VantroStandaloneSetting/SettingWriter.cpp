#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "VantroStandaloneSetting/SettingFormat.h"
#include "VantroStandaloneSetting/VantroStandaloneSetting.h"

namespace vantro {
namespace {

namespace format = setting_format;

constexpr std::string_view indent = "  ";

/// Writes the file as text, element by element: a document tree of a hundred thousand keys would cost several times as
/// much as reading one.
class Writer : public pugi::xml_writer
{
  public:
    [[nodiscard]] std::string take() { return std::move(text_); }

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

    void foreign(const ForeignNodes& nodes)
    {
        for (const auto& node : nodes.parent.children()) {
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

void writeKeys(Writer& writer, const char* name, const std::vector<YubiKey>& keys, const ForeignNodes& foreign)
{
    writer.open(name);
    for (const YubiKey& key : keys) {
        writer.open(format::yubiKey);
        writer.element(format::serial, std::to_string(key.serial));
        writer.foreign(key.foreign);
        writer.close(format::yubiKey);
    }
    writer.foreign(foreign);
    writer.close(name);
}

} // namespace

std::string serialised(const VantroStandaloneSetting& setting)
{
    Writer writer;
    writer.declaration();
    writer.open(format::root, " " + std::string(format::version) + "=\"" + std::to_string(settingFormatVersion) + "\"");

    writer.open(format::switchSetting);
    writer.element(format::secureMode, setting.switchSetting.secureMode);
    writer.element(format::screenLock, setting.switchSetting.screenLock);
    writer.foreign(setting.switchSetting.foreign);
    writer.close(format::switchSetting);

    writer.open(format::users);
    for (const UserSetting& user : setting.users) {
        writer.open(format::userSetting);
        writer.element(format::account, std::string_view(user.account));
        writeKeys(writer, format::keys, user.keys, user.foreignKeys);
        writer.foreign(user.foreign);
        writer.close(format::userSetting);
    }
    writer.foreign(setting.foreignUsers_);
    writer.close(format::users);

    writer.open(format::masterKeySetting);
    writeKeys(writer, format::masterKeys, setting.masterKeySetting.masterKeys, setting.masterKeySetting.foreignKeys);
    writer.foreign(setting.masterKeySetting.foreign);
    writer.close(format::masterKeySetting);

    writer.open(format::adminSetting);
    writer.element(format::toolLoginAuth, setting.adminSetting.toolLoginAuth);
    writeKeys(writer, format::adminKeys, setting.adminSetting.adminKeys, setting.adminSetting.foreignKeys);
    writer.foreign(setting.adminSetting.foreign);
    writer.close(format::adminSetting);

    writer.foreign(setting.foreign_);
    writer.close(format::root);
    writer.foreign(setting.foreignBeside_);
    return writer.take();
}

} // namespace vantro
