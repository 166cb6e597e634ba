// The settings page: its two switches, what they write, and what they say when it fails.

#include <filesystem>
#include <string>
#include <tuple>
#include <utility>

#include <QCheckBox>
#include <QLabel>

#include "Model/PamUpdateStatus.h"
#include "ServiceRequests.h"
#include "VantroStandaloneNames.h"
#include "app/AppFixture.h"
#include "appkit/StringTable.h"
#include "foundation/OperatingSystem.h"

namespace vantro::tests {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;

constexpr auto settingSource = "ViewController/Main/Setting/SettingViewController";
const std::vector<std::string> allRequired = {"authorization:0", "screensaver:0", "screensaver_new:0"};
const std::vector<std::string> allOptional = {"authorization:3", "screensaver:3", "screensaver_new:3"};

/// The answers of an update that fails because of a jump, or succeeds.
PamUpdateResults results(const std::array<bool, 3>& files)
{
    return {files[0], files[1], files[2], ServiceFailure("jump")};
}

TEST(PamUpdateResults, CountTheThirdFromAVersionOn)
{
    for (const auto& [version, counts] :
         {std::pair(OperatingSystemVersion{13, 6, 9}, false), {OperatingSystemVersion{14, 0, 0}, true}}) {
        ProcessInfo::setOperatingSystemVersion(version);
        EXPECT_TRUE(results({true, true, true}).isSuccess());
        EXPECT_EQ(results({true, true, false}).isSuccess(), !counts);
        EXPECT_FALSE(results({true, false, true}).isSuccess());
        EXPECT_FALSE(results({false, true, true}).isSuccess());
    }
}

class SettingTab : public AppFixture
{
  protected:
    template <class Control>
    Control& control(const char* name)
    {
        return *switchTo("Setting").view()->findChild<Control*>(name);
    }
    QCheckBox& forcedLogon() { return control<QCheckBox>("forcedYubiKeyLogonButton"); }
    QLabel& statusLabel() { return control<QLabel>("statusLabel"); }

    /// What the status says when it consists of these texts of the page's table, with these PAM services in the one
    /// that names some, and the reason.
    static QString status(const QStringList& keys, const QString& demanding = {})
    {
        QStringList lines;
        for (const QString& key : keys)
            lines += localizedString("SettingView", key.toLatin1().constData()).replace("%1", demanding);
        return (lines << localizedString("ServiceFailure", "jump")).join('\n');
    }
};

TEST_F(SettingTab, StoredForcedLogonIsWrittenOnceAndASecondLookWritesNothing)
{
    prefix.store({.switchSetting = {.secureMode = true}, .masterKeySetting = {.masterKeys = {7}}});
    dataSet();
    takeWrites();
    EXPECT_TRUE(forcedLogon().isChecked());
    switchTo("UserKey");
    EXPECT_TRUE(forcedLogon().isChecked());
    EXPECT_EQ(service->pamCalls(), allRequired);
    EXPECT_EQ(takeWrites(), 1);
}

TEST_F(SettingTab, EachOfTheOtherSwitchesWritesTheDocumentAndNothingElse)
{
    prefix.store({.adminSetting = {.adminKeys = {7}}});
    const auto expectWritten = [this](QCheckBox& box, const std::function<bool(const VantroStandaloneSetting&)>& isOn) {
        takeWrites();
        for (const bool wanted : {true, false}) {
            box.click();
            EXPECT_EQ(isOn(stored()), wanted);
            EXPECT_EQ(takeWrites(), 1);
        }
    };
    expectWritten(control<QCheckBox>("screenLockButton"),
                  [](const auto& content) { return content.switchSetting.screenLock; });
    expectRecorded("screen-lock", settingSource);
    expectWritten(*switchTo("Admin").view()->findChild<QCheckBox*>(),
                  [](const auto& content) { return content.adminSetting.toolLoginAuth; });
    EXPECT_THAT(service->pamCalls(), IsEmpty());
}

struct Change
{
    const char* name;
    bool wasOn;
    /// What the service answers for the three files.
    std::array<bool, 3> files;
    /// Which entries the status says demand a token, when that is not what the switch says.
    const char* demanding = "";
};

class ForcedLogon : public SettingTab, public testing::WithParamInterface<Change>
{
};

INSTANTIATE_TEST_SUITE_P(
    SettingTab, ForcedLogon,
    testing::Values(Change{"On", false, {true, true, true}}, Change{"Off", true, {true, true, true}},
                    Change{"OnRefusedInPart", false, {false, true, true}, "screensaver, screensaver_new"},
                    Change{"OffRefusedInPart", true, {true, true, false}, "screensaver_new"},
                    Change{"OnRefused", false, {false, false, false}},
                    Change{"OffRefused", true, {false, false, false}}),
    [](const auto& instance) { return instance.param.name; });

TEST_P(ForcedLogon, StandsOrFallsWithTheService)
{
    const auto& [name, wasOn, files, demanding] = GetParam();
    const bool isDone = results(files).isSuccess();
    prefix.store({.switchSetting = {.secureMode = wasOn}, .masterKeySetting = {.masterKeys = {7}}});
    QCheckBox& checkBox = forcedLogon();
    service->forgetCalls();
    takeWrites();
    service->script("SavePamSetting", {{files[0]}, {files[1]}, {files[2]}});
    // The first reason is the one that is told.
    service->script("LastFailure", {{std::string("jump")}, {std::string("disk-full")}});

    checkBox.click();

    EXPECT_EQ(service->pamCalls(), wasOn ? allOptional : allRequired);
    EXPECT_EQ(checkBox.isChecked(), isDone != wasOn);
    EXPECT_EQ(stored().switchSetting.secureMode, isDone != wasOn);
    EXPECT_EQ(takeWrites(), isDone ? 1 : 0);
    const QString failed =
        *demanding == 0
            ? status({"update_failed"})
            : status({"written_in_part", "entries_demand", wasOn ? "mend_switched_on" : "mend_switched_off"},
                     demanding);
    EXPECT_EQ(statusLabel().text(), isDone ? QString() : failed);
    EXPECT_EQ(statusLabel().isHidden(), isDone);
    expectRecorded(std::string("forced-logon-") + name, settingSource);
}

TEST_F(SettingTab, SaysWhatTheLastKeysDeletionLeftUndoneUntilAKeyIsThereAgain)
{
    const struct
    {
        bool wasOn;
        std::array<bool, 3> files;
        QString status;
        QString statusWithKey;
    } cases[] = {
        {false, {false, false, false}, status({"reset_failed_switched_off"}), ""},
        {true,
         {false, false, false},
         status({"reset_failed", "entries_demand", "mend_without_token"},
                "authorization, screensaver, screensaver_new"),
         ""},
        {true,
         {true, false, true},
         status({"reset_failed", "entries_demand", "mend_without_token"}, "screensaver"),
         status({"written_in_part", "entries_demand", "mend_switched_on"}, "screensaver")},
        {true, {true, true, true}, "", ""},
    };
    auto& changes = PamUpdateStatus::shared();
    window();
    for (const auto& [wasOn, files, expected, expectedWithKey] : cases) {
        auto& setting = dataSet().vantroStandaloneSetting;
        setting = VantroStandaloneSetting{.switchSetting = {.secureMode = wasOn}};
        switchTo("MasterKey");
        statusLabel();
        changes.record(PamUpdateStatus::Change::Switch, ControlFlag::Optional, results({true, true, true}));
        changes.record(PamUpdateStatus::Change::Reset, ControlFlag::Optional, results(files));
        for (const QString& text : {expected, expectedWithKey}) {
            switchTo("MasterKey");
            EXPECT_EQ(statusLabel().text(), text);
            EXPECT_EQ(statusLabel().isHidden(), text.isEmpty());
            setting.masterKeySetting.masterKeys.emplace_back(8U);
        }
    }
}

TEST_F(SettingTab, SaysWhatStandsBetweenTheSwitchAndItsEffect)
{
    const auto text = [](const char* key) { return localizedString("SettingView", key); };
    /// What the page says while the switch is off, and on.
    using Texts = std::pair<QString, QString>;
    const auto missing = [&](const char* key, const fs::path& path) {
        const QString off = text(key).arg(path.c_str()) + '\n' + text("reinstall");
        return Texts{off, off + '\n' + text("switch_off_until_then")};
    };
    const Texts nobodyAsks{text("nobody_asks"), text("nobody_asks")};
    const Texts asksForNothing{"", text("entry_not_demanding")};
    const Texts demanded{"", text("demanded")};
    const auto services = prefix.pamServices();
    const auto module = prefix.pamModules() / names::pamModule;
    const auto outside = prefix.path() / "stack";
    // Each is written on top of those before it.
    const std::tuple<fs::path, std::string, Texts> steps[] = {
        {services / "sudo", "@include common-auth\n", missing("module_missing", module)},
        {module, "a library", missing("service_missing", services / "authorization")},
        {services / "authorization", "# comment\n", missing("service_missing", services / "screensaver")},
        {services / "screensaver", "@include authorization\n",
         missing("service_missing", services / "screensaver_new")},
        {services / "screensaver_new", "", nobodyAsks},
        {services / "common-auth", "account include authorization\n#@include authorization\n", nobodyAsks},
        {services / "common-auth", "auth include authorization\n", asksForNothing},
        {services / "authorization", "auth optional pam_vantro_standalone.so\n", asksForNothing},
        {services / "authorization", "auth [default=die] /lib/pam_vantro_standalone.so\n", demanded},
        {services / "common-auth", "", nobodyAsks},
        {outside, "@include authorization\n", nobodyAsks},
        {services / "su", "auth substack " + outside.string() + "\n", demanded},
    };
    auto& setting = dataSet().vantroStandaloneSetting;
    setting.masterKeySetting.masterKeys.emplace_back(7U);
    const auto expectText = [this](const QString& expected) {
        const auto& label = control<QLabel>("demandLabel");
        EXPECT_EQ(label.text(), expected);
        EXPECT_EQ(label.isHidden(), expected.isEmpty());
    };
    for (const auto& [file, content, texts] : steps) {
        SCOPED_TRACE(file.string() + ": " + content);
        writeFile(file, content);
        for (const bool isOn : {false, true}) {
            switchTo("MasterKey");
            setting.switchSetting.secureMode = isOn;
            expectText(isOn ? texts.second : texts.first);
        }
    }
    forcedLogon().click();
    expectText(demanded.first);
    fs::remove(services / "su");
    EXPECT_TRUE(spinUntil([this] { return control<QLabel>("demandLabel").text() != ""; }));
    expectText(nobodyAsks.first);
}

} // namespace
} // namespace vantro::tests
