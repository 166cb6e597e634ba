// The three registration dialogs, clicked and typed into as a person does.

#include <QCheckBox>
#include <QLabel>

#include "AdminViewMessage.h"
#include "CommonMessage.h"
#include "MasterKeyViewMessage.h"
#include "ServiceRequests.h"
#include "UserViewMessage.h"
#include "ViewController/Main/Admin/AdminViewContorller.h"
#include "ViewController/Main/KeyListViewController.h"
#include "ViewController/Main/RegistrationKeyViewController.h"
#include "app/AppFixture.h"
#include "appkit/NSStoryboard.h"
#include "foundation/DispatchQueue.h"

namespace vantro::tests {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// One of the three dialogs, and in what it differs from the others.
struct Kind
{
    const char* name;
    const char* tab;
    const char* file;
    const char* dialog;
    QString (*notConnected)();
    QString (*alreadyAllocated)();
    bool closesAfterRefusal;
    /// A document whose list that the dialog fills has these keys.
    VantroStandaloneSetting (*with)(const std::vector<YubiKey>& keys);
    std::vector<std::string> beforeRequest;
    std::vector<std::string> afterRequest;
};

std::ostream& operator<<(std::ostream& stream, const Kind& kind)
{
    return stream << kind.name;
}

const Kind kinds[] = {
    {"User",
     "UserKey",
     "ViewController/Main/User/RegistrationUserKeyViewController",
     "RegistrationUserKeyViewController",
     UserViewMessage::yubiKeyIsNotConnected,
     UserViewMessage::alreadyAllocatedKey,
     false,
     [](const std::vector<YubiKey>& keys) {
         return keys.empty() ? VantroStandaloneSetting{} : VantroStandaloneSetting{.users = {{"tester", keys}}};
     },
     {"Allocate YubiKey."},
     {"Append allocaetd key. [accout: tester, serial: 5]"}},
    {"Master",
     "MasterKey",
     "ViewController/Main/Master/RegistrationMasterKeyViewController",
     "RegistrationMasterKeyViewController",
     MasterKeyViewMessage::yubiKeyIsNotConnected,
     MasterKeyViewMessage::alreadyAllocatedKey,
     false,
     [](const std::vector<YubiKey>& keys) { return VantroStandaloneSetting{.masterKeySetting = {.masterKeys = keys}}; },
     {"Serial: 5"},
     {"Update setting."}},
    {"Admin",
     "Admin",
     "ViewController/Main/Admin/RegistrationAdminKeyViewController",
     "RegistrationAdminKeyViewController",
     AdminViewMessage::yubiKeyIsNotConnected,
     AdminViewMessage::alreadyAllocatedKey,
     true,
     [](const std::vector<YubiKey>& keys) { return VantroStandaloneSetting{.adminSetting = {.adminKeys = keys}}; },
     {},
     {}},
};

std::vector<std::string> concatenated(std::initializer_list<std::vector<std::string>> lists)
{
    std::vector<std::string> all;
    for (const auto& list : lists)
        all.insert(all.end(), list.begin(), list.end());
    return all;
}

class Registration : public AppFixture, public testing::WithParamInterface<Kind>
{
  protected:
    KeyListViewController& list() { return page<KeyListViewController>(kind().tab); }
    QPointer<RegistrationKeyViewController> open()
    {
        return present<RegistrationKeyViewController>(list(), list().registerButton);
    }
    const Kind& kind() { return GetParam(); }
    static std::string text(const RegistrationKeyViewController& dialog)
    {
        return dialog.serialLabelModel.text().toStdString();
    }
    /// What the list's table shows in its last column.
    std::vector<std::uint64_t> rows()
    {
        auto& table = *list().view()->findChild<QTableView*>();
        QAbstractItemModel& model = *table.model();
        std::vector<std::uint64_t> serials;
        for (int row = 0; row < model.rowCount(); ++row)
            serials.push_back(model.index(row, model.columnCount() - 1).data().toULongLong());
        return serials;
    }
    bool hasSelection() { return list().view()->findChild<QTableView*>()->selectionModel()->hasSelection(); }
};

INSTANTIATE_TEST_SUITE_P(Dialogs, Registration, testing::ValuesIn(kinds),
                         [](const auto& instance) { return instance.param.name; });

TEST_P(Registration, DisplayFollowsTheTokens)
{
    store(kind().with({9}));
    const auto dialog = open();
    auto* const label = dialog->view()->findChild<QLabel*>("serialLabel");
    const std::string notConnected = kind().notConnected().toStdString();
    const struct
    {
        std::function<void()> change;
        std::string text;
        bool isEnabled;
    } steps[] = {
        {[] {}, notConnected, false},
        {[&] { plugIn(18446744073709551615U); }, "18446744073709551615", true},
        {[&] { plugIn(9); }, "9\n" + kind().alreadyAllocated().toStdString(), false},
        {[&] { plugIn(5); }, "5", true},
        // One of the tokens goes, and which one is not known.
        {[&] { unplug(); }, notConnected, false},
        {[&] { plugIn(5); }, "5", true},
        // A token without a readable serial is announced to nobody.
        {[&] { plugIn(0); }, "5", true},
    };
    for (const auto& [change, expected, isEnabled] : steps) {
        change();
        EXPECT_TRUE(spinUntil([&, &text_ = expected] { return text(*dialog) == text_; })) << text(*dialog);
        EXPECT_EQ(label->text().toStdString(), expected);
        EXPECT_EQ(dialog->OKButton->isEnabled(), isEnabled);
    }
    std::vector<std::string> loading = {"viewDidLoad() Start viewDidLoad."};
    if (kind().name == std::string("User")) {
        loading.emplace_back("viewDidLoad() Unable to connect to the active directory server, added a user.");
        loading.emplace_back("viewDidLoad() [Full name: Test Person, Accout name: tester]");
    }
    const std::vector<std::string> following = {
        "updateDisplay() YubiKey is not connected.",
        "viewDidLoad() Finished viewDidLoad.",
        "viewWillAppear() viewWillAppear",
        "onDeviceConnected() YubiKey connected.",
        "updateDisplay() YubiKey connected. [Serial: 18446744073709551615]",
        "onDeviceConnected() YubiKey connected.",
        "updateDisplay() YubiKey connected. [Serial: 9]",
        "updateDisplay() The settings are already assigned.",
        "onDeviceConnected() YubiKey connected.",
        "updateDisplay() YubiKey connected. [Serial: 5]",
        "onDeviceDisconnected() YubiKey disconnected.",
        "onDeviceConnected() YubiKey connected.",
        "updateDisplay() YubiKey connected. [Serial: 5]",
    };
    EXPECT_THAT(log(kind().file), ElementsAreArray(concatenated({loading, following})));
    EXPECT_EQ(takeWrites(), 0);
}

TEST_P(Registration, SaysWhyATokenThatIsPluggedInCannotBeRegistered)
{
    using Answer = ScriptedService::Answer;
    dataSet();
    const auto dialog = open();
    const auto* const label = dialog->view()->findChild<QLabel*>("obstacleLabel");
    const int height = dialog->view()->height();
    const auto plugInUnread = [this](const Answer& serial, const char* word) {
        return [this, serial, word] {
            service->script("GetSerial", {serial});
            service->script("LastFailure", {{std::string(word)}});
            onMonitorThread([] { postConnected(64); });
        };
    };
    const auto text = [](const char* what, const char* why = nullptr) {
        QStringList lines(localizedString("TokenObstacle", what));
        if (why != nullptr)
            lines += localizedString("ServiceFailure", why);
        return (lines << localizedString("TokenObstacle", "plug_in_again")).join('\n');
    };
    const std::pair<std::function<void()>, QString> steps[] = {
        {[&] { plugIn(5); }, ""},
        {[&] { unplug(); }, ""},
        {plugInUnread({std::uint64_t{0}}, "not-allowed by a later version"), text("serial_not_read")},
        {[&] { unplug(); }, ""},
        {plugInUnread({std::uint64_t{0}}, "no-keyboard-interface"), text("serial_not_read", "no-keyboard-interface")},
        {[&] { plugIn(5); }, ""},
        {[&] { unplug(); }, text("another_pulled_out")},
        {plugInUnread({ScriptedService::Refusal{"org.freedesktop.DBus.Error.AccessDenied"}}, ""),
         text("serial_not_read", "access-denied")},
        // Plugging the one that is left in again would not help.
        {[&] { unplug(); }, text("serial_not_read", "access-denied")},
        {[&] { unplug(); }, ""},
        {[&] {
             service.reset();
             onMonitorThread([] { postConnected(64); });
         },
         text("serial_not_read", "service-missing")},
    };
    for (const auto& [change, expected] : steps) {
        change();
        DispatchQueue::main().runPending();
        EXPECT_EQ(label->text(), expected);
        EXPECT_EQ(label->isHidden(), expected.isEmpty());
    }
    EXPECT_EQ(dialog->serialLabelModel.text(), kind().notConnected());
    EXPECT_TRUE(spinUntil([&] { return dialog->view()->height() > height; })) << "the dialog grows with its texts";
}

TEST_P(Registration, RegisterWritesTheFileThenTheDocumentThenTheList)
{
    store(kind().with({3, 9}));
    plugIn(5);
    list().view()->findChild<QTableView*>()->selectAll();
    const auto dialog = open();
    EXPECT_EQ(text(*dialog), "5");
    forgetLog();
    service->forgetCalls();
    QTest::mouseClick(dialog->OKButton, Qt::LeftButton);

    EXPECT_TRUE(isDismissed(dialog));
    ASSERT_THAT(service->methods(), ElementsAre("CreateCRSettingFile"));
    EXPECT_EQ(service->calls()[0].serial, 5U);
    EXPECT_EQ(stored(), kind().with({3, 5, 9}));
    EXPECT_EQ(takeWrites(), 1);
    EXPECT_THAT(rows(), ElementsAre(3, 5, 9));
    EXPECT_FALSE(hasSelection());
    EXPECT_THAT(messages(kind().file),
                ElementsAreArray(concatenated({{"Called onClickOK."}, kind().beforeRequest, kind().afterRequest})));
    EXPECT_THAT(alerts, IsEmpty());
}

TEST_P(Registration, AFileThatIsNotWrittenLeavesEverythingElseAsItWas)
{
    using Answer = ScriptedService::Answer;
    store(kind().with({3}));
    plugIn(5);
    takeWrites();
    const Answer unknown{ScriptedService::Refusal{"org.freedesktop.DBus.Error.UnknownInterface"}};
    const struct
    {
        std::optional<Answer> answer;
        /// What the service says when it is asked why.
        Answer reason;
        bool waitsForTheLimit;
        /// The text below the specified one; empty when there is none.
        const char* sentence;
    } cases[] = {
        {Answer{false}, {std::string()}, false, ""},
        {Answer{false}, {std::string("slot-not-programmed")}, false, "slot-not-programmed"},
        {Answer{false}, {std::string("word of a later version")}, false, ""},
        {Answer{false}, unknown, false, ""},
        {Answer{false}, {ScriptedService::Silence()}, true, ""},
        {Answer{ScriptedService::Refusal()}, {std::string("jump")}, true, ""},
        {Answer{ScriptedService::Refusal{"org.freedesktop.DBus.Error.AccessDenied"}}, unknown, true, "access-denied"},
        {Answer{ScriptedService::Silence()}, {std::string("jump")}, true, ""},
        {Answer{true, 400ms}, {std::string("jump")}, true, ""},
        {std::nullopt, unknown, true, "service-missing"}};
    for (const auto& [answer, reason, waitsForTheLimit, sentence] : cases) {
        serviceReplyLimit = waitsForTheLimit ? 200ms : std::chrono::milliseconds(ample);
        if (answer) {
            service->script("CreateCRSettingFile", {*answer});
            service->script("LastFailure", {reason});
        } else {
            service.reset();
        }
        const auto dialog = open();
        forgetLog();
        const auto start = std::chrono::steady_clock::now();
        QTest::mouseClick(dialog->OKButton, Qt::LeftButton);

        const auto duration = std::chrono::steady_clock::now() - start;
        EXPECT_EQ(duration >= 200ms, waitsForTheLimit);
        EXPECT_LT(duration, ample / 4);
        ASSERT_EQ(alerts.size(), 1U);
        EXPECT_EQ(alerts[0].windowTitle, "Vantro Standalone (Version 1.0.0)");
        EXPECT_EQ(alerts[0].style, NSAlert::Style::Warning);
        EXPECT_EQ(alerts[0].message, CommonMessage::warning());
        EXPECT_EQ(alerts[0].information,
                  CommonMessage::CRFailureAlert() +
                      (*sentence == 0 ? QString() : "\n\n" + localizedString("ServiceFailure", sentence)));
        EXPECT_EQ(alerts[0].buttons, QStringList{CommonMessage::ok()});
        alerts.clear();
        EXPECT_THAT(messages(kind().file),
                    ElementsAreArray(concatenated(
                        {{"Called onClickOK."}, kind().beforeRequest, {"Failed to update the CR setting file."}})));
        EXPECT_EQ(stored(), kind().with({3}));
        EXPECT_EQ(takeWrites(), 0);
        EXPECT_THAT(rows(), ElementsAre(3));

        // The window can be used: the dialog's own Cancel, and the tabs behind it.
        if (!kind().closesAfterRefusal) {
            EXPECT_TRUE(dialog->OKButton->isEnabled());
            EXPECT_EQ(text(*dialog), "5");
            pressKey(Qt::Key_Escape);
            EXPECT_EQ(messages(kind().file).back(), "Called onClickCancel.");
        }
        EXPECT_TRUE(isDismissed(dialog));
        switchTo("Setting");
    }
}

TEST_P(Registration, ATokenThatIsPulledOutMeanwhile)
{
    dataSet();
    const auto openAndRegister = [&](const ScriptedService::Answer& answer) {
        plugIn(5);
        service->forgetCalls();
        service->script("CreateCRSettingFile", {answer});
        auto dialog = open();
        std::thread monitor([&] {
            EXPECT_TRUE(waitUntil([&] { return !service->methods().empty(); }));
            postDisconnected();
            postDisconnected();
        });
        QTest::mouseClick(dialog->OKButton, Qt::LeftButton);
        monitor.join();
        return dialog;
    };
    // The dialog says so as soon as the main thread is free, under the alert already.
    whileAlert = [&] {
        const auto* const dialog = list().findChild<RegistrationKeyViewController*>();
        EXPECT_TRUE(spinUntil([&] { return dialog->serialLabelModel.text() == kind().notConnected(); }));
    };
    const auto refused = openAndRegister({false, 300ms});
    EXPECT_EQ(alerts.size(), 1U);
    EXPECT_EQ(stored(), VantroStandaloneSetting());
    if (!kind().closesAfterRefusal) {
        EXPECT_FALSE(refused->OKButton->isEnabled());
        QTest::keyClick(refused->view(), Qt::Key_Escape);
    }
    EXPECT_TRUE(isDismissed(refused));

    // The record was written before the token went, so the registration stands.
    const auto accepted = openAndRegister({true, 300ms});
    EXPECT_TRUE(isDismissed(accepted));
    EXPECT_EQ(stored(), kind().with({5}));
    EXPECT_EQ(dataSet().connectedYubiKeyCount(), 0);
}

TEST_P(Registration, PresentedByAnotherControllerItDoesNothing)
{
    plugIn(5);
    service->forgetCalls();
    takeWrites();
    auto& other = switchTo("Setting");
    other.presentAsModalWindow(NSStoryboard::named("Main").instantiateController(kind().dialog));
    const QPointer dialog(other.findChild<RegistrationKeyViewController*>());
    forgetLog();
    QTest::mouseClick(dialog->OKButton, Qt::LeftButton);
    EXPECT_THAT(messages(kind().file), ElementsAre("Called onClickOK.", "Return onClickOK."));
    EXPECT_THAT(service->methods(), IsEmpty());
    EXPECT_EQ(takeWrites(), 0);
    if (kind().closesAfterRefusal)
        EXPECT_TRUE(isDismissed(dialog));
    else
        EXPECT_TRUE(dialog->view()->isVisible());
}

TEST_P(Registration, OnlyABareSerialIsRegistered)
{
    plugIn(5);
    service->forgetCalls();
    for (const char* const shown : {"", " 5", "5 ", "5\n", "-5", "0x5", "18446744073709551616", "٥"}) {
        const auto dialog = open();
        dialog->serialLabelModel.setText(QString::fromUtf8(shown));
        dialog->onClickOK(nullptr);
        EXPECT_EQ(messages(kind().file).back(), "Return onClickOK.");
        EXPECT_THAT(service->methods(), IsEmpty()) << shown;
        dialog->dismissController();
        EXPECT_TRUE(isDismissed(dialog));
    }
    const auto dialog = open();
    dialog->serialLabelModel.setText(QStringLiteral("+0005"));
    dialog->onClickOK(nullptr);
    EXPECT_EQ(stored(), kind().with({5}));
}

/// The two dialogs that look once more when the token's file has been written.
class RegistrationLookingAgain : public Registration
{
};

INSTANTIATE_TEST_SUITE_P(Dialogs, RegistrationLookingAgain, testing::ValuesIn(kinds + 1, std::end(kinds)),
                         [](const auto& instance) { return instance.param.name; });

TEST_P(RegistrationLookingAgain, ATokenThatWasAddedMeanwhile)
{
    plugIn(5);
    const auto dialog = open();
    dataSet().vantroStandaloneSetting = kind().with({5});
    takeWrites();
    QTest::mouseClick(dialog->OKButton, Qt::LeftButton);
    EXPECT_EQ(messages(kind().file).back(), "This YubiKey is already assigned. [Serial: 5]");
    EXPECT_THAT(service->methods(), Contains("CreateCRSettingFile"));
    EXPECT_EQ(takeWrites(), 0);
    EXPECT_EQ(dialog->view()->isVisible(), !kind().closesAfterRefusal);
}

TEST_P(Registration, ByKeyboardAlone)
{
    plugIn(5);
    list().registerButton->setFocus();
    pressKey(Qt::Key_Space);
    QPointer dialog(list().findChild<RegistrationKeyViewController*>());
    ASSERT_TRUE(activate(*dialog->view()->window()));

    // Tab comes by every control that there is, and nothing else.
    std::set<QWidget*> controls;
    for (QWidget* const widget : dialog->view()->findChildren<QWidget*>())
        if (widget->isVisible() && (widget->focusPolicy() & Qt::TabFocus) != 0)
            controls.insert(widget);
    std::set<QWidget*> visited;
    for (std::size_t step = 0; step < controls.size(); ++step) {
        pressKey(Qt::Key_Tab);
        visited.insert(QApplication::focusWidget());
    }
    EXPECT_EQ(visited, controls);
    EXPECT_EQ(controls.count(dialog->OKButton), 1U);

    takeWrites();
    pressKey(Qt::Key_Escape);
    EXPECT_EQ(messages(kind().file).back(), "Called onClickCancel.");
    EXPECT_TRUE(isDismissed(dialog));
    EXPECT_EQ(takeWrites(), 0);

    pressKey(Qt::Key_Space);
    dialog = list().findChild<RegistrationKeyViewController*>();
    pressKey(Qt::Key_Return);
    EXPECT_TRUE(isDismissed(dialog));
    EXPECT_EQ(stored(), kind().with({5}));
}

TEST_F(AppFixture, AnAdministratorKeyUnlocksItsSwitch)
{
    plugIn(300);
    auto& list = page<AdminViewContorller>("Admin");
    EXPECT_FALSE(list.adminModel.authCheckButtonModel.isEnabled());
    for (const std::uint64_t serial : {300U, 100U, 200U}) {
        plugIn(serial);
        const auto dialog = present<RegistrationKeyViewController>(list, list.registerButton);
        QTest::mouseClick(dialog->OKButton, Qt::LeftButton);
        EXPECT_TRUE(isDismissed(dialog));
        EXPECT_TRUE(list.adminModel.authCheckButtonModel.isEnabled());
    }
    EXPECT_EQ(stored(), (VantroStandaloneSetting{.adminSetting = {.adminKeys = {100, 200, 300}}}));
    for (const bool isOn : {true, false}) {
        QTest::mouseClick(list.view()->findChild<QCheckBox*>(), Qt::LeftButton);
        EXPECT_EQ(stored().adminSetting.toolLoginAuth, isOn);
    }
}

} // namespace
} // namespace vantro::tests
