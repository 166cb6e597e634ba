#include "VantroStandaloneSetting/PamSetting.h"

#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace vantro::tests {
namespace {

using nlohmann::ordered_json;
using namespace std::string_literals;

const PamSetting example = {"authorization", ModuleInterface::Auth, ControlFlag::Required, "pam_vantro_standalone.so"};

/// The archive of `example`, to be changed by a test.
ordered_json exampleFields()
{
    return {{"$class", "PamSetting"},
            {"fileName", example.fileName},
            {"moduleInterface", 1U},
            {"controlFlag", 0U},
            {"moduleName", example.moduleName}};
}

TEST(PamSetting, RoundTripsEveryPosition)
{
    const char* const interfaces[] = {"account", "auth", "password", "session"};
    const char* const flags[] = {"required", "requisite", "sufficient", "optional"};
    for (std::size_t interface = 0; interface < 4; ++interface) {
        for (std::size_t flag = 0; flag < 4; ++flag) {
            const PamSetting setting = {std::string(255, 'f'), static_cast<ModuleInterface>(interface),
                                        static_cast<ControlFlag>(flag), "漢"};
            const auto archive = setting.archived();
            ASSERT_TRUE(archive);
            EXPECT_EQ(PamSetting::unarchived(*archive), setting);
            EXPECT_EQ(pamKeyword(setting.moduleInterface), interfaces[interface]);
            EXPECT_EQ(pamKeyword(setting.controlFlag), flags[flag]);
        }
    }
    EXPECT_EQ(example.archived(), ordered_json::to_cbor(exampleFields()));
}

TEST(PamSetting, IsNotArchivedWithATextThatCanNotBeRead)
{
    for (const auto& text : {""s, "\xff"s, "\xc3"s, std::string(256, 'x')}) {
        PamSetting setting = example;
        setting.fileName = text;
        EXPECT_FALSE(setting.archived()) << testing::PrintToString(text);
        setting = example;
        setting.moduleName = text;
        EXPECT_FALSE(setting.archived()) << testing::PrintToString(text);
    }
}

TEST(PamSetting, RefusesFieldsThatAreNotItsOwn)
{
    const std::vector<ordered_json> texts = {
        "",          std::string(256, 'x'),      "\xff", "ok\xed\xa0\x80", 1U, nullptr, true, {"a"},
        {{"a", 1U}}, ordered_json::binary({'a'})};
    const std::vector<ordered_json> positions = {
        4U, std::numeric_limits<std::uint64_t>::max(), -1, 1.0, 0.5, "1", true, nullptr};
    const std::pair<const char*, std::vector<ordered_json>> refused[] = {
        {"fileName", texts},   {"moduleInterface", positions}, {"controlFlag", positions},
        {"moduleName", texts}, {"$class", {"NSString"}},       {"extra", {1U}},
    };
    const auto isTaken = [](const ordered_json& fields) {
        return PamSetting::unarchived(ordered_json::to_cbor(fields)).has_value();
    };
    ASSERT_TRUE(isTaken(exampleFields()));
    for (const auto& [key, values] : refused) {
        for (const auto& value : values) {
            auto fields = exampleFields();
            fields[key] = value;
            EXPECT_FALSE(isTaken(fields)) << key << testing::PrintToString(ordered_json::to_cbor(value));
        }
        auto fields = exampleFields();
        const bool wasThere = fields.erase(key) == 1;
        EXPECT_EQ(isTaken(fields), !wasThere) << key;
    }
    auto fields = exampleFields();
    fields.erase("$class");
    fields["$class"] = "PamSetting";
    EXPECT_FALSE(isTaken(fields)) << "the class is last";
    EXPECT_FALSE(isTaken(ordered_json::object()));
    EXPECT_FALSE(isTaken(ordered_json::array({exampleFields()})));
}

TEST(PamSetting, RefusesBytesThatAreNotItsArchive)
{
    const ArchiveData archive = example.archived().value();
    const std::string bytes(archive.begin(), archive.end());
    const auto withOneMore = [&bytes](const std::string& entry) {
        return std::string(1, static_cast<char>(bytes.front() + 1)) + bytes.substr(1) + entry;
    };
    const auto fileNamed = [](const ordered_json& name) {
        auto fields = exampleFields();
        fields["fileName"] = name;
        const auto data = ordered_json::to_cbor(fields);
        return std::string(data.begin(), data.end());
    };
    const std::string position = "moduleInterface\x01";
    std::string inLongerForm = bytes;
    inLongerForm.replace(bytes.find(position), position.size(), "moduleInterface\x18\x01");
    std::vector<std::string> refused = {
        bytes + '\0',
        withOneMore(bytes.substr(bytes.find("\x6amoduleName"))),
        inLongerForm,
        fileNamed(std::string(keyed_archive::sizeLimit, 'x')),
        fileNamed({{"fileName", "authorization"}}),
        withOneMore("\x61z" + std::string(keyed_archive::sizeLimit - bytes.size() - 3, '\x81') + '\0'),
    };
    for (std::size_t length = 0; length < bytes.size(); ++length)
        refused.push_back(bytes.substr(0, length));
    // Arrays, maps and tags in one another, as deep as it gets.
    for (const char head : {'\x81', '\xa1', '\xc1', '\x9f', '\xbf'})
        refused.emplace_back(keyed_archive::sizeLimit, head);
    // More bytes or entries than memory can hold.
    for (const char head : {'\x5b', '\x7b', '\x9b', '\xbb'})
        refused.push_back(head + std::string(8, '\x7f'));
    for (const auto& data : refused)
        EXPECT_FALSE(keyed_archive::decode({data.begin(), data.end()}, "PamSetting"))
            << testing::PrintToString(data.substr(0, 200));
}

} // namespace
} // namespace vantro::tests
