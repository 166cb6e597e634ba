// The settings page: its two switches, what they write, and what they say when it fails.

#include <QCheckBox>
#include <QLabel>
#include <QTableView>

#include "Resources/Storyboards.h"
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
    store({.masterKeys = {7}, .secureMode = true});
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
        EXPECT_EQ(stored().screenLock, isOn);
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
};

constexpr OperatingSystemVersion strict{14, 0, 0};
constexpr OperatingSystemVersion lenient{13, 6, 9};

class ForcedLogon : public SettingTab, public testing::WithParamInterface<Change>
{
};

INSTANTIATE_TEST_SUITE_P(SettingTab, ForcedLogon,
                         testing::Values(Change{"On", strict, false, {true, true, true}, true},
                                         Change{"Off", strict, true, {true, true, true}, false},
                                         Change{"OnFirstRefused", strict, false, {false, true, true}, false},
                                         Change{"OnLastRefused", strict, false, {true, true, false}, false},
                                         Change{"OffLastRefused", strict, true, {true, true, false}, true},
                                         Change{"OffAllRefused", strict, true, {false, false, false}, true},
                                         Change{"OffLastRefusedLenient", lenient, true, {true, true, false}, false},
                                         Change{"OnSecondRefusedLenient", lenient, false, {true, false, true}, false}),
                         [](const auto& instance) { return instance.param.name; });

TEST_P(ForcedLogon, StandsOrFallsWithTheService)
{
    const Change& change = GetParam();
    ProcessInfo::setOperatingSystemVersion(change.system);
    store({.masterKeys = {7}, .secureMode = change.wasOn});
    QCheckBox& checkBox = forcedLogon();
    int notifications = 0;
    const Observation observation = NotificationCenter::defaultCenter().addObserver(
        "forcedYubiKeyLogonChanged", [&notifications](const Notification&) { ++notifications; });
    service->forgetCalls();
    takeWrites();
    service->script("SavePamSetting", {{change.answers[0]}, {change.answers[1]}, {change.answers[2]}});

    checkBox.click();

    const bool isDone = change.isOnAfterwards != change.wasOn;
    EXPECT_EQ(service->pamCalls(), change.wasOn ? allOptional : allRequired);
    EXPECT_EQ(checkBox.isChecked(), change.isOnAfterwards);
    EXPECT_EQ(stored().secureMode, change.isOnAfterwards);
    EXPECT_EQ(takeWrites(), isDone ? 1 : 0);
    EXPECT_EQ(notifications, 1);
    EXPECT_EQ(label("statusLabel").isHidden(), isDone);
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
    store({.masterKeys = {7}});
    QCheckBox& checkBox = forcedLogon();
    serviceReplyLimit = 100ms;
    service->script("SavePamSetting", {{ScriptedService::Silence{}}});
    const auto start = std::chrono::steady_clock::now();
    checkBox.click();
    EXPECT_GE(std::chrono::steady_clock::now() - start, 3 * serviceReplyLimit);
    EXPECT_FALSE(checkBox.isChecked());
    EXPECT_TRUE(checkBox.isEnabled());
    EXPECT_FALSE(stored().secureMode);
}

TEST_F(SettingTab, SaysUntilTheNextChangeThatTheLastKeysDeletionLeftLogonForced)
{
    store({.masterKeys = {7}, .secureMode = true});
    EXPECT_TRUE(label("statusLabel").isHidden());
    service->script("SavePamSetting", {{false}});
    auto& list = AppFixture::page<KeyListViewController>("MasterKey");
    list.view()->findChild<QTableView*>()->selectAll();
    const auto deletion = present<DeletionKeyViewController>(list, list.deleteButton);
    ASSERT_TRUE(deletion);
    QTest::mouseClick(deletion->OKButton, Qt::LeftButton);
    ASSERT_TRUE(isDismissed(deletion));
    EXPECT_EQ(stored(), DocumentContent{.secureMode = true});
    EXPECT_EQ(label("statusLabel").text(), localizedString("SettingView", "reset_failed"));
    EXPECT_FALSE(label("statusLabel").isHidden());

    switchTo("MasterKey");
    dataSet().vantroStandaloneSetting.masterKeySetting.masterKeys.emplace_back(8U);
    EXPECT_FALSE(label("statusLabel").isHidden());
    service->script("SavePamSetting", {{true}});
    forcedLogon().click();
    EXPECT_FALSE(forcedLogon().isChecked());
    EXPECT_TRUE(label("statusLabel").isHidden());
}

} // namespace
} // namespace vantro::tests
