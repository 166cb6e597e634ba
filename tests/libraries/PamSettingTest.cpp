#include "VantroStandaloneSetting/PamSetting.h"

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

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
    const ordered_json refusedTexts[] = {
        "",          std::string(256, 'x'),      "\xff", "ok\xed\xa0\x80", 1U, nullptr, true, {"a"},
        {{"a", 1U}}, ordered_json::binary({'a'})};
    const ordered_json refusedPositions[] = {4U,     std::numeric_limits<std::uint64_t>::max(), -1, 1.0, 0.5, "1", true,
                                             nullptr};
    ASSERT_TRUE(PamSetting::unarchived(ordered_json::to_cbor(exampleFields())));
    const auto expectRefused = [](const ordered_json& fields) {
        EXPECT_FALSE(PamSetting::unarchived(ordered_json::to_cbor(fields)));
    };
    const auto original = exampleFields();
    for (const auto& field : original.items()) {
        SCOPED_TRACE(field.key());
        auto fields = exampleFields();
        fields.erase(field.key());
        expectRefused(fields);
        const bool isPosition = field.value().is_number();
        for (const auto& value : isPosition ? std::vector(std::begin(refusedPositions), std::end(refusedPositions))
                                            : std::vector(std::begin(refusedTexts), std::end(refusedTexts))) {
            fields = exampleFields();
            fields[field.key()] = value;
            expectRefused(fields);
        }
    }
    auto fields = exampleFields();
    fields["extra"] = 1U;
    expectRefused(fields);
    fields = exampleFields();
    fields["$class"] = "NSString";
    expectRefused(fields);
    fields = exampleFields();
    fields.erase("$class");
    fields["$class"] = "PamSetting";
    expectRefused(fields); // the class is last
    expectRefused(ordered_json::object());
    expectRefused(ordered_json::array({exampleFields()}));
}

TEST(PamSetting, RefusesBytesThatAreNotItsArchive)
{
    const ArchiveData archive = example.archived().value();
    for (std::size_t length = 0; length < archive.size(); ++length)
        EXPECT_FALSE(PamSetting::unarchived({archive.begin(), archive.begin() + static_cast<std::ptrdiff_t>(length)}));
    ArchiveData data = archive;
    data.push_back(0);
    EXPECT_FALSE(PamSetting::unarchived(data)) << "a byte behind it";

    auto fields = exampleFields();
    fields["fileName"] = std::string(keyed_archive::sizeLimit, 'x');
    EXPECT_FALSE(keyed_archive::decode(ordered_json::to_cbor(fields), "PamSetting")) << "too large";

    // The same object once more with its last field twice: a map of six entries.
    const auto last = ordered_json::to_cbor(ordered_json{{"moduleName", example.moduleName}});
    data = archive;
    ++data.front();
    data.insert(data.end(), last.begin() + 1, last.end());
    EXPECT_FALSE(PamSetting::unarchived(data)) << "a field twice";

    // Position 1 in a longer form than needed.
    data = archive;
    const std::string key = "moduleInterface";
    const auto position =
        std::search(data.begin(), data.end(), key.begin(), key.end()) + static_cast<std::ptrdiff_t>(key.size());
    *position = 0x18;
    data.insert(position + 1, 1);
    EXPECT_FALSE(PamSetting::unarchived(data)) << "another form of a number";

    constexpr std::uint8_t arrayOfOne = 0x81;
    constexpr std::uint8_t mapOfOne = 0xa1;
    constexpr std::uint8_t tag = 0xc1;
    for (const std::uint8_t byte : {arrayOfOne, mapOfOne, tag, std::uint8_t{0x9f}, std::uint8_t{0xbf}})
        EXPECT_FALSE(PamSetting::unarchived(ArchiveData(keyed_archive::sizeLimit, byte))) << "as deep as it gets";
    auto nested = exampleFields();
    nested["fileName"] = {{"fileName", "authorization"}};
    EXPECT_FALSE(keyed_archive::decode(ordered_json::to_cbor(nested), "PamSetting")) << "a value inside a value";
    for (const int kind : {0x5b, 0x7b, 0x9b, 0xbb}) {
        data.assign(9, 0x7f);
        data.front() = static_cast<std::uint8_t>(kind);
        EXPECT_FALSE(PamSetting::unarchived(data)) << "more than memory can hold: " << kind;
    }
    data = archive;
    ++data.front();
    data.insert(data.end(), {0x61, 'z'});
    data.resize(keyed_archive::sizeLimit - 1, arrayOfOne);
    data.push_back(0);
    EXPECT_FALSE(PamSetting::unarchived(data)) << "as deep as it gets behind its fields";
}

} // namespace
} // namespace vantro::tests
