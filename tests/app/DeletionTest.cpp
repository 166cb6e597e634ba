// The three deletion dialogs: what is asked, what is deleted, what is written and what the service is told.

#include <future>

#include <QCheckBox>
#include <QLabel>
#include <QTest>

#include "CommonMessage.h"
#include "Model/PamUpdateStatus.h"
#include "ViewController/Main/DeletionKeyViewController.h"
#include "app/ScreenFixture.h"
#include "support/WaitUntil.h"

namespace vantro::tests {
namespace {

using testing::ElementsAre;

constexpr int ok = NSAlert::firstButtonReturn;
constexpr int cancel = NSAlert::secondButtonReturn;

struct Case
{
    const char* name;
    VantroStandaloneSetting before;
    /// The rows that are selected.
    std::set<int> rows;
    VantroStandaloneSetting after;
    int writes = 1;
    /// The answer to the warning; absent when none must come.
    std::optional<int> answer = {};
    /// What the service answers when it is told that no token is demanded; absent when it must not be told.
    std::optional<bool> reset = {};
};

class Deletion : public ScreenFixture
{
  protected:
    /// Makes this the document of an open window. The settings page, which would write, is left alone.
    void show(const VantroStandaloneSetting& content)
    {
        window();
        dataSet().vantroStandaloneSetting = content;
        dataSet().vantroStandaloneSetting.write();
        service->forgetCalls();
        takeWrites();
        appearAgain();
    }
    void appearAgain()
    {
        switchTo(screen().name == "User" ? "MasterKey" : "UserKey");
        list();
    }
    QPointer<DeletionKeyViewController> open(const std::set<int>& rows)
    {
        list().clearTableSelection();
        for (const int row : rows)
            table().selectionModel()->select(table().model()->index(row, 0),
                                             QItemSelectionModel::Select | QItemSelectionModel::Rows);
        return present<DeletionKeyViewController>(list(), list().deleteButton);
    }
    void confirm(const QPointer<DeletionKeyViewController>& dialog)
    {
        QTest::mouseClick(dialog->OKButton, Qt::LeftButton);
        EXPECT_TRUE(isDismissed(dialog));
    }

    static ShownAlert warning()
    {
        return {.message = CommonMessage::caution(),
                .information = screen().name == "Admin" ? screen().message("no_registration_admin_yubiKey")
                                                        : CommonMessage::noRegistrationYubiKey(),
                .buttons = {CommonMessage::ok(), CommonMessage::cancel()},
                // Enter never destroys.
                .defaultButton = cancel};
    }

    void check(const Case& deletion)
    {
        SCOPED_TRACE(deletion.name);
        show(deletion.before);
        service->script("SavePamSetting", {{deletion.reset.value_or(false), 50ms}});
        std::future<VantroStandaloneSetting> whenAsked;
        if (deletion.reset)
            whenAsked = std::async(std::launch::async, [this] {
                EXPECT_TRUE(waitUntil([this] { return !service->pamCalls().empty(); }));
                return stored();
            });
        answers = {deletion.answer.value_or(ok)};
        confirm(open(deletion.rows));
        expectAlerts(deletion.answer ? std::vector{warning()} : std::vector<ShownAlert>());
        EXPECT_EQ(takeWrites(), deletion.writes);
        EXPECT_EQ(stored(), deletion.after);
        if (deletion.reset) {
            auto withoutKeys = deletion.after;
            withoutKeys.switchSetting = deletion.before.switchSetting;
            EXPECT_EQ(whenAsked.get(), withoutKeys) << "a kill in between must not leave a key that opens nothing";
            EXPECT_THAT(service->pamCalls(), ElementsAre("authorization:3", "screensaver:3", "screensaver_new:3"));
        }
        EXPECT_EQ(service->methods().size(), deletion.reset ? 3U : 0U) << "no record is removed";
        EXPECT_EQ(PamUpdateStatus::shared().text().isEmpty(), deletion.reset.value_or(true));
        EXPECT_EQ(hasSelection(), deletion.answer == cancel);
        const QStringList left = rows();
        appearAgain();
        EXPECT_EQ(left, rows());
    }
};

INSTANTIATE_TEST_SUITE_P(Of, Deletion, allScreens(), nameOf);

TEST_P(Deletion, AsksBeforeTheLastKeysGoAndReleasesWhatDependedOnThem)
{
    const auto with = screen().with;
    const auto demanding = [](const VantroStandaloneSetting& content) { return screen().demanding(content); };
    const VantroStandaloneSetting last = demanding(with({3, 9}));
    const std::optional<bool> reset = screen().name == "Admin" ? std::nullopt : std::optional(true);
    std::vector<Case> cases = {
        {"two of three", demanding(with({3, 5, 9})), {0, 2}, demanding(with({5}))},
        {"the last, demanded, cancelled", last, {0, 1}, last, 0, cancel},
        {"the last, demanded", last, {0, 1}, {}, 2, ok, reset},
        {"the last, not demanded", with({3}), {0}, {}, 2, {}, reset},
    };
    if (screen().name == "Master") {
        const std::vector<UserSetting> withoutKeys = {{"adam", {}}};
        auto before = last;
        before.users = withoutKeys;
        cases.push_back(
            {"the last beside an account without keys", before, {0, 1}, {.users = withoutKeys}, 2, {}, true});
    }
    if (reset)
        cases.push_back({"the last, refused", last, {0, 1}, demanding({}), 1, ok, false});
    for (const Case& deletion : cases)
        check(deletion);
    if (!reset) {
        EXPECT_FALSE(list().view()->findChild<QCheckBox*>()->isEnabled());
        EXPECT_FALSE(list().view()->findChild<QCheckBox*>()->isChecked());
    }
    expectRecorded("deletion-" + screen().name, screen().file("Deletion"));
}

TEST_P(Deletion, ShowsWhatIsSelectedAndEnterDeletesNothing)
{
    const VantroStandaloneSetting two = screen().with({678, 12345});
    show(two);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        const auto dialog = open({0, 1});
        EXPECT_EQ(dialog->view()->findChild<QLabel*>("keysLabel")->text(),
                  screen().name == "User" ? "tester : 678\ntester : 12345" : "678\n12345");
        EXPECT_TRUE(dialog->confirmationLabel->isVisible());
        pressKey(key);
        EXPECT_TRUE(isDismissed(dialog));
    }
    const auto dialog = open({});
    EXPECT_EQ(dialog->view()->findChild<QLabel*>("keysLabel")->text(), screen().message("not_selected_for_deletion"));
    EXPECT_FALSE(dialog->confirmationLabel->isVisible());
    EXPECT_FALSE(dialog->OKButton->isEnabled());
    EXPECT_EQ(stored(), two);
    EXPECT_EQ(takeWrites(), 0);
    expectRecorded("deletion-cancelled-" + screen().name, screen().file("Deletion"));
}

TEST_P(Deletion, WithoutItsListOrItsSelectionItOnlyCloses)
{
    const VantroStandaloneSetting two = screen().demanding(screen().with({678, 12345}));
    show(two);
    const auto dialog = open({0, 1});
    list().clearTableSelection();
    confirm(dialog);
    confirm(presentElsewhere<DeletionKeyViewController>("Deletion"));
    EXPECT_EQ(stored(), two);
    expectAlerts({});
    expectRecorded("deletion-of-nothing-" + screen().name, screen().file("Deletion"));
}

} // namespace
} // namespace vantro::tests
