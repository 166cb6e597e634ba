// The settings page: its two switches, what they write, and what they say when it fails.

#include <QCheckBox>
#include <QLabel>
#include <QTableView>

#include "ServiceRequests.h"
#include "ViewController/Main/DeletionKeyViewController.h"
#include "ViewController/Main/KeyListViewController.h"
#include "ViewController/Main/Setting/SettingViewController.h"
#include "app/AppFixture.h"
#include "foundation/OperatingSystem.h"

namespace vantro::tests {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

constexpr auto sourceFile = "ViewController/Main/Setting/SettingViewController";
const std::vector<std::string> allRequired = {"authorization:0", "screensaver:0", "screensaver_new:0"};
const std::vector<std::string> allOptional = {"authorization:3", "screensaver:3", "screensaver_new:3"};

class SettingTab : public AppFixture
{
  protected:
    SettingViewController& page() { return AppFixture::page<SettingViewController>("Setting"); }
    QCheckBox& box(const char* name) { return *page().view()->findChild<QCheckBox*>(name); }
    QCheckBox& forcedLogon() { return box("forcedYubiKeyLogonButton"); }
    QLabel& label(const char* name) { return *page().view()->findChild<QLabel*>(name); }

    /// What the status says when it consists of these texts of the page's table, with these PAM services in the one
    /// that names some, and the reason that the first of two has.
    static QString status(const QStringList& keys, const QString& demanding = {}, const char* reason = "jump")
    {
        QStringList lines;
        for (const QString& key : keys)
            lines += localizedString("SettingView", key.toLatin1().constData()).replace("%1", demanding);
        return (lines << localizedString("ServiceFailure", reason)).join('\n');
    }
    /// Scripts the answers for the three files, and one reason each time it is asked for.
    void answerFiles(const std::array<bool, 3>& files)
    {
        service->script("SavePamSetting", {{files[0]}, {files[1]}, {files[2]}});
        service->script("LastFailure", {{std::string("jump")}, {std::string("disk-full")}});
    }
};

TEST_F(SettingTab, ForcedLogonNeedsAKeyAndSaysSo)
{
    store({});
    EXPECT_FALSE(forcedLogon().isEnabled());
    EXPECT_FALSE(label("forcedYubiKeyLogonWarning").isHidden());
    EXPECT_TRUE(box("screenLockButton").isEnabled());

    switchTo("MasterKey");
    dataSet().vantroStandaloneSetting.masterKeySetting.masterKeys.emplace_back(7U);
    EXPECT_TRUE(forcedLogon().isEnabled());
    EXPECT_TRUE(label("forcedYubiKeyLogonWarning").isHidden());
}

TEST_F(SettingTab, StoredForcedLogonIsWrittenOnceAndASecondLookWritesNothing)
{
    store({.switchSetting = {.secureMode = true}, .masterKeySetting = {.masterKeys = {7}}});
    dataSet();
    takeWrites();
    EXPECT_TRUE(forcedLogon().isChecked());
    EXPECT_EQ(service->pamCalls(), allRequired);
    EXPECT_EQ(takeWrites(), 1);

    service->forgetCalls();
    switchTo("UserKey");
    EXPECT_TRUE(forcedLogon().isChecked());
    EXPECT_THAT(service->pamCalls(), IsEmpty());
    EXPECT_EQ(takeWrites(), 0);
}

TEST_F(SettingTab, ScreenLockWritesTheDocumentAndNothingElse)
{
    store({});
    QCheckBox& screenLock = box("screenLockButton");
    takeWrites();
    for (const bool isOn : {true, false}) {
        screenLock.click();
        EXPECT_EQ(stored().switchSetting.screenLock, isOn);
        EXPECT_EQ(takeWrites(), 1);
        EXPECT_THAT(messages(sourceFile),
                    Contains(std::string("Update ScreenLockModel: ") + (isOn ? "true." : "false.")));
    }
    EXPECT_THAT(service->pamCalls(), IsEmpty());
}

struct Change
{
    const char* name;
    OperatingSystemVersion system;
    bool wasOn;
    /// What the service answers for the three files.
    std::array<bool, 3> answers;
    bool isOnAfterwards;
    /// Which entries the status says demand a token, when that is not what the switch says.
    const char* demanding = "";
};

constexpr OperatingSystemVersion strict{14, 0, 0};
constexpr OperatingSystemVersion lenient{13, 6, 9};

class ForcedLogon : public SettingTab, public testing::WithParamInterface<Change>
{
};

INSTANTIATE_TEST_SUITE_P(
    SettingTab, ForcedLogon,
    testing::Values(
        Change{"On", strict, false, {true, true, true}, true}, Change{"Off", strict, true, {true, true, true}, false},
        Change{"OnFirstRefused", strict, false, {false, true, true}, false, "screensaver, screensaver_new"},
        Change{"OnLastRefused", strict, false, {true, true, false}, false, "authorization, screensaver"},
        Change{"OffLastRefused", strict, true, {true, true, false}, true, "screensaver_new"},
        Change{"OnAllRefused", strict, false, {false, false, false}, false},
        Change{"OffAllRefused", strict, true, {false, false, false}, true},
        Change{"OffLastRefusedLenient", lenient, true, {true, true, false}, false},
        Change{"OnSecondRefusedLenient", lenient, false, {true, false, true}, false, "authorization, screensaver_new"}),
    [](const auto& instance) { return instance.param.name; });

TEST_P(ForcedLogon, StandsOrFallsWithTheService)
{
    const Change& change = GetParam();
    ProcessInfo::setOperatingSystemVersion(change.system);
    store({.switchSetting = {.secureMode = change.wasOn}, .masterKeySetting = {.masterKeys = {7}}});
    QCheckBox& checkBox = forcedLogon();
    int notifications = 0;
    const Observation observation = NotificationCenter::defaultCenter().addObserver(
        "forcedYubiKeyLogonChanged", [&notifications](const Notification&) { ++notifications; });
    service->forgetCalls();
    takeWrites();
    answerFiles(change.answers);

    checkBox.click();

    const bool isDone = change.isOnAfterwards != change.wasOn;
    EXPECT_EQ(service->pamCalls(), change.wasOn ? allOptional : allRequired);
    EXPECT_EQ(checkBox.isChecked(), change.isOnAfterwards);
    EXPECT_EQ(stored().switchSetting.secureMode, change.isOnAfterwards);
    EXPECT_EQ(takeWrites(), isDone ? 1 : 0);
    EXPECT_EQ(notifications, 1);
    EXPECT_EQ(label("statusLabel").isHidden(), isDone);
    const QString mend = change.wasOn ? "mend_switched_on" : "mend_switched_off";
    const QString failed = *change.demanding == 0
                               ? status({"update_failed"})
                               : status({"written_in_part", "entries_demand", mend}, change.demanding);
    EXPECT_EQ(label("statusLabel").text(), isDone ? QString() : failed);
    const auto text = [](bool value) { return std::string(value ? "true" : "false"); };
    EXPECT_THAT(messages(sourceFile),
                Contains("Update PAM setting. [Success. authorization: " + text(change.answers[0]) + ", screensaver: " +
                         text(change.answers[1]) + ", screensaver_new: " + text(change.answers[2]) + "]"));
    const auto failure = Contains("warning updateForcedYubiKeyModel() Failed update PAM setting.");
    if (isDone)
        EXPECT_THAT(log(sourceFile), Not(failure));
    else
        EXPECT_THAT(log(sourceFile), failure);
}

TEST_F(SettingTab, ASilentServiceIsWaitedForThreeTimesAndThenTheSwitchSpringsBack)
{
    store({.masterKeySetting = {.masterKeys = {7}}});
    QCheckBox& checkBox = forcedLogon();
    serviceReplyLimit = 100ms;
    service->script("SavePamSetting", {{ScriptedService::Silence{}}});
    const auto start = std::chrono::steady_clock::now();
    checkBox.click();
    EXPECT_GE(std::chrono::steady_clock::now() - start, 3 * serviceReplyLimit);
    EXPECT_FALSE(checkBox.isChecked());
    EXPECT_TRUE(checkBox.isEnabled());
    EXPECT_FALSE(stored().switchSetting.secureMode);
}

TEST_F(SettingTab, SaysWhatTheLastKeysDeletionLeftUndoneUntilAKeyIsThereAgain)
{
    const QString all = "authorization, screensaver, screensaver_new";
    const struct
    {
        bool wasOn;
        std::array<bool, 3> files;
        QString status;
        /// Once a key is registered again.
        QString statusWithKey;
    } cases[] = {
        {false, {false, false, false}, status({"reset_failed_switched_off"}), ""},
        {true, {false, false, false}, status({"reset_failed", "entries_demand", "mend_without_token"}, all), ""},
        {true,
         {true, false, true},
         status({"reset_failed", "entries_demand", "mend_without_token"}, "screensaver"),
         status({"written_in_part", "entries_demand", "mend_switched_on"}, "screensaver")},
        {true, {true, true, true}, "", ""},
    };
    for (const auto& [wasOn, files, expected, expectedWithKey] : cases) {
        SCOPED_TRACE(expected.toStdString());
        auto& setting = dataSet().vantroStandaloneSetting;
        setting =
            VantroStandaloneSetting{.switchSetting = {.secureMode = wasOn}, .masterKeySetting = {.masterKeys = {7}}};
        service->script("SavePamSetting", {{true}});
        EXPECT_EQ(label("statusLabel").text(), "");
        answerFiles(files);
        auto& list = AppFixture::page<KeyListViewController>("MasterKey");
        list.view()->findChild<QTableView*>()->selectAll();
        const auto deletion = present<DeletionKeyViewController>(list, list.deleteButton);
        QTest::mouseClick(deletion->OKButton, Qt::LeftButton);
        ASSERT_TRUE(isDismissed(deletion));
        EXPECT_EQ(label("statusLabel").text(), expected);
        EXPECT_EQ(label("statusLabel").isHidden(), expected.isEmpty());

        switchTo("MasterKey");
        setting.masterKeySetting.masterKeys.emplace_back(8U);
        EXPECT_EQ(label("statusLabel").text(), expectedWithKey);
        EXPECT_EQ(label("statusLabel").isHidden(), expectedWithKey.isEmpty());

        // The next change that is done leaves nothing to say.
        service->script("SavePamSetting", {{true}});
        forcedLogon().click();
        EXPECT_TRUE(label("statusLabel").isHidden());
        switchTo("MasterKey");
    }
}

} // namespace
} // namespace vantro::tests
