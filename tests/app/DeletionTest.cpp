// The three deletion dialogs: what is asked, what is deleted, what is written and what the service is told.

#include <functional>
#include <future>

#include <QLabel>
#include <QMessageBox>
#include <QTimer>

#include "AdminViewMessage.h"
#include "CommonMessage.h"
#include "MasterKeyViewMessage.h"
#include "UserViewMessage.h"
#include "ViewController/Main/Admin/AdminViewContorller.h"
#include "ViewController/Main/DeletionKeyViewController.h"
#include "ViewController/Main/KeyListViewController.h"
#include "app/AppFixture.h"
#include "appkit/NSStoryboard.h"
#include "foundation/OperatingSystem.h"
#include "support/WaitUntil.h"

namespace vantro::tests {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr int ok = NSAlert::firstButtonReturn;
constexpr int cancel = NSAlert::secondButtonReturn;
constexpr OperatingSystemVersion strict{14, 0, 0};
constexpr OperatingSystemVersion lenient{13, 6, 9};

struct Case
{
    const char* name;
    VantroStandaloneSetting before;
    /// The rows that are selected.
    std::set<int> rows;
    VantroStandaloneSetting after;
    int writes;
    /// The answer to the warning; absent when none must come.
    std::optional<int> answer = {};
    /// What the service answers for the three files; empty when it must not be asked.
    std::vector<ScriptedService::Answer> files = {};
    OperatingSystemVersion system = strict;
    /// The messages after "Called onClickOK."; absent where another case shows the same.
    std::optional<std::vector<std::string>> messages = {};
};

class Deletion : public AppFixture
{
  protected:
    /// Makes this the document of an open window. The settings page, which would write, is left alone.
    void show(const std::string& tab, const VantroStandaloneSetting& content)
    {
        window();
        dataSet().vantroStandaloneSetting = content;
        dataSet().vantroStandaloneSetting.write();
        switchTo(tab == "UserKey" ? "MasterKey" : "UserKey");
        service->forgetCalls();
        takeWrites();
    }
    QPointer<DeletionKeyViewController> open(const char* tab, const std::set<int>& rows)
    {
        auto& list = page<KeyListViewController>(tab);
        auto& table = *list.view()->findChild<QTableView*>();
        list.clearTableSelection();
        for (const int row : rows)
            table.selectionModel()->select(table.model()->index(row, 0),
                                           QItemSelectionModel::Select | QItemSelectionModel::Rows);
        return present<DeletionKeyViewController>(list, list.deleteButton);
    }

    void check(const char* tab, const std::string& file, QString (*warning)(), std::vector<Case> cases)
    {
        for (Case& deletion : cases) {
            SCOPED_TRACE(deletion.name);
            show(tab, deletion.before);
            if (!deletion.files.empty())
                service->script("SavePamSetting", {deletion.files.begin(), deletion.files.end()});
            ProcessInfo::setOperatingSystemVersion(deletion.system);
            if (deletion.answer)
                answers = {*deletion.answer};
            const auto dialog = open(tab, deletion.rows);
            forgetLog();
            QTest::mouseClick(dialog->OKButton, Qt::LeftButton);
            EXPECT_TRUE(isDismissed(dialog));

            ASSERT_EQ(alerts.size(), deletion.answer ? 1U : 0U);
            for (const ShownAlert& alert : alerts) {
                EXPECT_EQ(alert.windowTitle, "Vantro Standalone (Version 1.0.0)");
                EXPECT_EQ(alert.style, NSAlert::Style::Warning);
                EXPECT_EQ(alert.message, CommonMessage::caution());
                EXPECT_EQ(alert.information, warning());
                EXPECT_EQ(alert.buttons, (QStringList{CommonMessage::ok(), CommonMessage::cancel()}));
                EXPECT_EQ(alert.defaultButton, cancel) << "Enter never destroys";
            }
            alerts.clear();
            EXPECT_EQ(takeWrites(), deletion.writes);
            EXPECT_EQ(stored(), deletion.after);
            EXPECT_THAT(service->pamCalls(),
                        ElementsAreArray(
                            deletion.files.empty()
                                ? std::vector<std::string>{}
                                : std::vector<std::string>{"authorization:3", "screensaver:3", "screensaver_new:3"}));
            EXPECT_EQ(service->methods().size(), service->pamCalls().size()) << "no record is removed";
            if (deletion.messages) {
                deletion.messages->insert(deletion.messages->begin(), "Called onClickOK.");
                EXPECT_THAT(messages(file), ElementsAreArray(*deletion.messages));
            }
            auto& table = *page<KeyListViewController>(tab).view()->findChild<QTableView*>();
            EXPECT_EQ(table.model()->rowCount(), rowCountOf(tab, deletion.after));
            EXPECT_EQ(table.selectionModel()->hasSelection(), deletion.answer == cancel);
        }
    }

    static int rowCountOf(const std::string& tab, const VantroStandaloneSetting& content)
    {
        if (tab != "UserKey")
            return static_cast<int>(
                (tab == "Admin" ? content.adminSetting.adminKeys : content.masterKeySetting.masterKeys).size());
        std::size_t count = 0;
        for (const auto& user : content.users)
            count += user.keys.size();
        return static_cast<int>(count);
    }
};

const char* const updated = "Update PAM setting. [Success. authorization: true, screensaver: true, screensaver_new: "
                            "true]";

TEST_F(Deletion, OfUserKeys)
{
    const VantroStandaloneSetting last{.switchSetting = {.secureMode = true}, .users = {{"adam", {1}}, {"zoe", {2}}}};
    const VantroStandaloneSetting none{};
    const VantroStandaloneSetting noneForced{.switchSetting = {.secureMode = true}};
    check(
        "UserKey", "ViewController/Main/User/DeletionUserKeyViewController", CommonMessage::noRegistrationYubiKey,
        {
            {"one of two keys of an account",
             {.switchSetting = {.secureMode = true}, .users = {{"adam", {1, 2}}}},
             {1},
             {.switchSetting = {.secureMode = true}, .users = {{"adam", {1}}}},
             1,
             {},
             {},
             strict,
             {{"Update setting.", "Remove allocated key. [Account: adam, Serial: 2]"}}},
            {"an account's only key, and an entry that was empty",
             {.users = {{"adam", {1}}, {"empty", {}}, {"zoe", {2}}}},
             {0},
             {.users = {{"zoe", {2}}}},
             1},
            {"one of two accounts with the same token",
             {.users = {{"adam", {1}}, {"zoe", {1}}}},
             {1},
             {.users = {{"adam", {1}}}},
             1},
            {"the last, forced, cancelled", last, {0, 1}, last, 0, cancel, {}, strict, {{"Cancel alert."}}},
            {"the last, forced",
             last,
             {0, 1},
             none,
             2,
             ok,
             {{true}, {true}, {true}},
             strict,
             {{"Update setting.", "Remove allocated key. [Account: adam, Serial: 1]",
               "Remove allocated key. [Account: zoe, Serial: 2]", "No YubiKey is assigned.",
               "Start update PAM setting.", updated, "Update setting. [Forced YubiKey Logon: false]"}}},
            {"the last, forced, but a master key is left",
             {.switchSetting = {.secureMode = true}, .users = {{"adam", {1}}}, .masterKeySetting = {.masterKeys = {9}}},
             {0},
             {.switchSetting = {.secureMode = true}, .masterKeySetting = {.masterKeys = {9}}},
             1},
            {"the last, not forced", {.users = {{"adam", {1}}}}, {0}, none, 2, {}, {{true}, {true}, {true}}},
            {"refused: the first file", last, {0, 1}, noneForced, 1, ok, {{false}, {true}, {true}}, strict},
            {"refused: the second file", last, {0, 1}, noneForced, 1, ok, {{true}, {false}, {true}}, strict},
            {"refused: the third file",
             last,
             {0, 1},
             noneForced,
             1,
             ok,
             {{true}, {true}, {false}},
             strict,
             {{"Update setting.", "Remove allocated key. [Account: adam, Serial: 1]",
               "Remove allocated key. [Account: zoe, Serial: 2]", "No YubiKey is assigned.",
               "Start update PAM setting.",
               "Update PAM setting. [Success. authorization: true, screensaver: true, screensaver_new: false]",
               "onClickOK(_:) Failed update PAM setting."}}},
            {"refused: two files", last, {0, 1}, noneForced, 1, ok, {{false}, {false}, {true}}, strict},
            {"refused: all three files", last, {0, 1}, noneForced, 1, ok, {{false}, {false}, {false}}, lenient},
            {"refused on an older system: the third", last, {0, 1}, none, 2, ok, {{true}, {true}, {false}}, lenient},
            {"refused on an older system: the second",
             last,
             {0, 1},
             noneForced,
             1,
             ok,
             {{true}, {false}, {true}},
             lenient},
        });
}

TEST_F(Deletion, OfMasterKeys)
{
    const VantroStandaloneSetting last{.switchSetting = {.secureMode = true},
                                       .masterKeySetting = {.masterKeys = {3, 9}}};
    check(
        "MasterKey", "ViewController/Main/Master/DeletionMasterKeyViewController", CommonMessage::noRegistrationYubiKey,
        {
            {"two of three",
             {.switchSetting = {.secureMode = true}, .masterKeySetting = {.masterKeys = {3, 5, 9}}},
             {0, 2},
             {.switchSetting = {.secureMode = true}, .masterKeySetting = {.masterKeys = {5}}},
             1,
             {},
             {},
             strict,
             {{"Update setting.", "Remove master key. [Serial: 3]", "Remove master key. [Serial: 9]"}}},
            {"the last, forced, cancelled", last, {0, 1}, last, 0, cancel, {}, strict, {{"Cancel alert."}}},
            {"the last, forced",
             last,
             {0, 1},
             {},
             2,
             ok,
             {{true}, {true}, {true}},
             strict,
             {{"Update setting.", "Remove master key. [Serial: 3]", "Remove master key. [Serial: 9]",
               "No YubiKey is assigned.", "Start update PAM setting.", updated,
               "Update setting. [Forced YubiKey Logon: false]"}}},
            {"the last, forced, but a user key is left",
             {.switchSetting = {.secureMode = true}, .users = {{"adam", {1}}}, .masterKeySetting = {.masterKeys = {3}}},
             {0},
             {.switchSetting = {.secureMode = true}, .users = {{"adam", {1}}}},
             1},
            {"the last, forced, with an account that has no key",
             {.switchSetting = {.secureMode = true}, .users = {{"adam", {}}}, .masterKeySetting = {.masterKeys = {3}}},
             {0},
             {.users = {{"adam", {}}}},
             2,
             {},
             {{true}, {true}, {true}}},
            {"the last, not forced",
             {.masterKeySetting = {.masterKeys = {3}}},
             {0},
             {},
             2,
             {},
             {{true}, {true}, {true}}},
            {"refused: the third file",
             last,
             {0, 1},
             {.switchSetting = {.secureMode = true}},
             1,
             ok,
             {{true}, {true}, {false}},
             strict},
            {"refused on an older system: the third", last, {0, 1}, {}, 2, ok, {{true}, {true}, {false}}, lenient},
        });
}

TEST_F(Deletion, OfAdministratorKeys)
{
    const VantroStandaloneSetting all{.switchSetting = {.secureMode = true},
                                      .users = {{"adam", {1}}},
                                      .adminSetting = {.toolLoginAuth = true, .adminKeys = {1, 2, 3}}};
    VantroStandaloneSetting unguarded = all;
    unguarded.adminSetting.toolLoginAuth = false;
    VantroStandaloneSetting one = all;
    one.adminSetting.adminKeys = {2};
    VantroStandaloneSetting none = unguarded;
    none.adminSetting.adminKeys = {};
    check("Admin", "ViewController/Main/Admin/DeletionAdminKeyViewController",
          AdminViewMessage::noRegistrationAdminYubiKey,
          {
              {"two of three",
               all,
               {0, 2},
               one,
               1,
               {},
               {},
               strict,
               {{"Remove administrator key. [Serial: 1]", "Remove administrator key. [Serial: 3]", "Update setting."}}},
              {"the last, guarded, cancelled", all, {0, 1, 2}, all, 0, cancel, {}, strict, {{"Cancel alert."}}},
              {"the last, guarded",
               one,
               {0},
               none,
               2,
               ok,
               {},
               strict,
               {{"Remove administrator key. [Serial: 2]", "Update setting.",
                 "The administrator's login YubiKey setting does not exist.", "Update setting. [Auth: false]"}}},
              {"the last, not guarded", unguarded, {0, 1, 2}, none, 2},
          });
    const auto& page = this->page<AdminViewContorller>("Admin");
    EXPECT_FALSE(page.adminModel.authCheckButtonModel.isEnabled());
    EXPECT_FALSE(page.adminModel.authCheckButtonModel.state());
}

const struct
{
    const char* tab;
    const char* file;
    const char* dialog;
    QString (*notSelected)();
    const char* lines;
    bool logsLoading;
} dialogs[] = {
    {"UserKey", "ViewController/Main/User/DeletionUserKeyViewController", "DeletionUserKeyViewController",
     UserViewMessage::notSelectedForDeletion, "alice : 12345\nbob : 678", true},
    {"MasterKey", "ViewController/Main/Master/DeletionMasterKeyViewController", "DeletionMasterKeyViewController",
     MasterKeyViewMessage::notSelectedForDeletion, "12345\n678", true},
    {"Admin", "ViewController/Main/Admin/DeletionAdminKeyViewController", "DeletionAdminKeyViewController",
     AdminViewMessage::notSelectedForDeletion, "12345\n678", false},
};

const VantroStandaloneSetting twoEach{.users = {{"alice", {12345}}, {"bob", {678}}},
                                      .masterKeySetting = {.masterKeys = {12345, 678}},
                                      .adminSetting = {.adminKeys = {12345, 678}}};

TEST_F(Deletion, ShowsWhatIsSelectedAndEnterDeletesNothing)
{
    store(twoEach);
    for (const auto& dialog : dialogs) {
        auto shown = open(dialog.tab, {0, 1});
        auto* keys = shown->view()->findChild<QLabel*>("keysLabel");
        EXPECT_EQ(keys->text(), dialog.lines);
        EXPECT_TRUE(shown->confirmationLabel->isVisible());
        EXPECT_THAT(messages(dialog.file),
                    ElementsAreArray(dialog.logsLoading
                                         ? std::vector<std::string>{"Start viewDidLoad.", "Finished viewDidLoad."}
                                         : std::vector<std::string>{}));
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
            if (!shown)
                shown = open(dialog.tab, {0, 1});
            pressKey(key);
            EXPECT_TRUE(isDismissed(shown));
            EXPECT_EQ(messages(dialog.file).back(), "Called onClickCancel.");
        }

        forgetLog();
        shown = open(dialog.tab, {});
        keys = shown->view()->findChild<QLabel*>("keysLabel");
        EXPECT_EQ(keys->text(), dialog.notSelected());
        EXPECT_FALSE(shown->confirmationLabel->isVisible());
        EXPECT_FALSE(shown->OKButton->isEnabled());
        if (dialog.logsLoading)
            EXPECT_EQ(messages(dialog.file)[1], "Not selected for deletion YubiKey.");
        else
            EXPECT_THAT(messages(dialog.file), IsEmpty());
        pressKey(Qt::Key_Escape);
        EXPECT_TRUE(isDismissed(shown));
    }
    EXPECT_EQ(stored(), twoEach);
    EXPECT_EQ(takeWrites(), 0);
}

TEST_F(Deletion, OfTheLastKeysTakesEnterAndEscForCancelWhereverTheFocusIs)
{
    NSAlert::setPresenter({});
    const VantroStandaloneSetting last{.switchSetting = {.secureMode = true}, .masterKeySetting = {.masterKeys = {3}}};
    const auto inFront = [] { return QApplication::activeModalWidget(); };
    const std::function<void()> ways[] = {
        [&] { QTest::keyClick(inFront(), Qt::Key_Return); },
        [&] { QTest::keyClick(inFront(), Qt::Key_Escape); },
        [&] {
            for (auto* const button : inFront()->findChildren<QPushButton*>())
                if (button->text() == CommonMessage::ok())
                    QTest::keyClick(button, Qt::Key_Return);
        },
    };
    show("MasterKey", last);
    for (const auto& answer : ways) {
        const auto dialog = open("MasterKey", {0});
        QTimer::singleShot(0, dialog, [&] {
            EXPECT_NE(qobject_cast<QMessageBox*>(inFront()), nullptr);
            answer();
        });
        QTest::mouseClick(dialog->OKButton, Qt::LeftButton);
        EXPECT_TRUE(isDismissed(dialog));
        EXPECT_EQ(stored(), last);
    }
}

TEST_F(Deletion, OfTheLastKeyIsWrittenBeforeTheServiceIsAsked)
{
    show("MasterKey", {.masterKeySetting = {.masterKeys = {3}}});
    service->script("SavePamSetting", {{true, 100ms}});
    auto meanwhile = std::async(std::launch::async, [this] {
        EXPECT_TRUE(waitUntil([this] { return !service->pamCalls().empty(); }));
        return stored();
    });
    const auto dialog = open("MasterKey", {0});
    QTest::mouseClick(dialog->OKButton, Qt::LeftButton);
    EXPECT_EQ(meanwhile.get(), VantroStandaloneSetting{})
        << "a kill in between must not leave a key that opens nothing";
    EXPECT_TRUE(isDismissed(dialog));
}

TEST_F(Deletion, WithoutItsListOrItsSelectionItOnlyCloses)
{
    store(twoEach);
    for (const auto& dialog : dialogs) {
        auto& other = switchTo("Setting");
        forgetLog();
        other.presentAsModalWindow(NSStoryboard::named("Main").instantiateController(dialog.dialog));
        QPointer shown(other.findChild<DeletionKeyViewController*>());
        QTest::mouseClick(shown->OKButton, Qt::LeftButton);
        EXPECT_TRUE(isDismissed(shown));
        const auto withoutList = messages(dialog.file);
        EXPECT_EQ(withoutList[withoutList.size() - 2], "Failed to get presenting view controller.");
        EXPECT_EQ(withoutList.back(), "Called onClickOK.");

        shown = open(dialog.tab, {0});
        page<KeyListViewController>(dialog.tab).clearTableSelection();
        QTest::mouseClick(shown->OKButton, Qt::LeftButton);
        EXPECT_TRUE(isDismissed(shown));
        EXPECT_EQ(messages(dialog.file).back(), "selectedRowIndexes is empty.");
    }
    EXPECT_EQ(stored(), twoEach);
    EXPECT_EQ(takeWrites(), 0);
    EXPECT_THAT(alerts, IsEmpty());
}

TEST_F(Deletion, OfARowWhoseAccountHasNoEntryAnyMore)
{
    store(twoEach);
    const auto dialog = open("UserKey", {0, 1});
    VantroStandaloneSetting elsewhere = twoEach;
    elsewhere.users = {{"bob", {678, 9}}};
    dataSet().vantroStandaloneSetting = elsewhere;
    QTest::mouseClick(dialog->OKButton, Qt::LeftButton);
    EXPECT_TRUE(isDismissed(dialog));
    elsewhere.users = {{"bob", {9}}};
    EXPECT_EQ(stored(), elsewhere);
}

} // namespace
} // namespace vantro::tests
