// The three registration dialogs, clicked and typed into as a person does.

#include <thread>

#include <QCheckBox>
#include <QLabel>

#include "CommonMessage.h"
#include "ServiceRequests.h"
#include "ViewController/Main/RegistrationKeyViewController.h"
#include "app/ScreenFixture.h"
#include "foundation/DispatchQueue.h"

namespace vantro::tests {
namespace {

using Answer = ScriptedService::Answer;
using testing::ElementsAre;
using testing::IsEmpty;

class Registration : public ScreenFixture
{
  protected:
    QPointer<RegistrationKeyViewController> open()
    {
        return present<RegistrationKeyViewController>(list(), list().registerButton);
    }
    static bool staysOpen() { return screen().afterRefusal == Screen::AfterRefusal::StayOpen; }
    static QString notConnected() { return screen().message("yubiKey_is_not_connected"); }
    static std::string file() { return screen().file("Registration"); }
};

INSTANTIATE_TEST_SUITE_P(Of, Registration, allScreens(), nameOf);

TEST_P(Registration, FollowsTheTokensAndWritesTheFileThenTheDocumentThenTheList)
{
    store(screen().with({3, 9}));
    dataSet();
    takeWrites();
    table().selectAll();
    const auto dialog = open();
    auto* const label = dialog->view()->findChild<QLabel*>("serialLabel");
    const struct
    {
        std::function<void()> change;
        QString text;
        bool isEnabled;
    } steps[] = {
        {[] {}, notConnected(), false},
        {[&] { plugIn(18446744073709551615U); }, "18446744073709551615", true},
        {[&] { plugIn(9); }, "9\n" + screen().message("already_allocated_key"), false},
        {[&] { plugIn(5); }, "5", true},
        // One of the tokens goes, and which one is not known.
        {[&] { unplug(); }, notConnected(), false},
        {[&] { plugIn(5); }, "5", true},
        // A token without a readable serial is announced to nobody.
        {[&] { plugIn(0); }, "5", true},
    };
    for (const auto& [change, text, isEnabled] : steps) {
        change();
        EXPECT_TRUE(spinUntil([label, &expected = text] { return label->text() == expected; }))
            << label->text().toStdString();
        EXPECT_EQ(dialog->OKButton->isEnabled(), isEnabled);
    }

    service->forgetCalls();
    QTest::mouseClick(dialog->OKButton, Qt::LeftButton);
    expectRecorded("registration-" + screen().name, file());
    // The alert about several tokens keeps the dialog behind it.
    while (dataSet().connectedYubiKeyCount() > 0)
        unplug();
    EXPECT_TRUE(isDismissed(dialog));
    ASSERT_THAT(service->methods(), ElementsAre("CreateCRSettingFile"));
    EXPECT_EQ(service->calls()[0].serial, 5U);
    EXPECT_EQ(stored(), screen().with({3, 5, 9}));
    EXPECT_EQ(takeWrites(), 1);
    EXPECT_THAT(rows().replaceInStrings("tester ", ""), ElementsAre("3", "5", "9"));
    EXPECT_FALSE(hasSelection());
    EXPECT_THAT(alerts, IsEmpty());
}

TEST_P(Registration, SaysWhyATokenThatIsPluggedInCannotBeRegistered)
{
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
    EXPECT_EQ(dialog->view()->findChild<QLabel*>("serialLabel")->text(), notConnected());
    EXPECT_TRUE(spinUntil([&] { return dialog->view()->height() > height; })) << "the dialog grows with its texts";
}

TEST_P(Registration, AFileThatIsNotWrittenLeavesEverythingElseAsItWas)
{
    store(screen().with({3}));
    plugIn(5);
    takeWrites();
    const Answer unknown{ScriptedService::Refusal{"org.freedesktop.DBus.Error.UnknownInterface"}};
    const Answer jump{std::string("jump")};
    const struct
    {
        /// Absent when there is no service.
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
        {Answer{ScriptedService::Refusal()}, jump, true, ""},
        {Answer{ScriptedService::Refusal{"org.freedesktop.DBus.Error.AccessDenied"}}, unknown, true, "access-denied"},
        {Answer{ScriptedService::Silence()}, jump, true, ""},
        {Answer{true, 400ms}, jump, true, ""},
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
        EXPECT_EQ(std::chrono::steady_clock::now() - start >= 200ms, waitsForTheLimit);

        QString information = CommonMessage::CRFailureAlert();
        if (*sentence != 0)
            information += "\n\n" + localizedString("ServiceFailure", sentence);
        ASSERT_EQ(alerts.size(), 1U);
        EXPECT_EQ(alerts[0].windowTitle, "Vantro Standalone (Version 1.0.0)");
        EXPECT_EQ(alerts[0].style, NSAlert::Style::Warning);
        EXPECT_EQ(alerts[0].message, CommonMessage::warning());
        EXPECT_EQ(alerts[0].information, information);
        EXPECT_EQ(alerts[0].buttons, QStringList{CommonMessage::ok()});
        alerts.clear();
        EXPECT_EQ(messages(file()).back(), "Failed to update the CR setting file.");
        EXPECT_EQ(stored(), screen().with({3}));
        EXPECT_EQ(takeWrites(), 0);
        EXPECT_EQ(rows().size(), 1);

        if (staysOpen()) {
            EXPECT_TRUE(dialog->OKButton->isEnabled());
            pressKey(Qt::Key_Escape);
            EXPECT_EQ(messages(file()).back(), "Called onClickCancel.");
        }
        EXPECT_TRUE(isDismissed(dialog));
    }
}

TEST_P(Registration, ATokenThatIsPulledOutMeanwhile)
{
    dataSet();
    const auto openAndRegister = [&](const Answer& answer) {
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
        EXPECT_TRUE(spinUntil([&] { return dialog->serialLabelModel.text() == notConnected(); }));
    };
    const auto refused = openAndRegister({false, 300ms});
    EXPECT_EQ(alerts.size(), 1U);
    EXPECT_EQ(stored(), VantroStandaloneSetting());
    if (staysOpen()) {
        EXPECT_FALSE(refused->OKButton->isEnabled());
        QTest::keyClick(refused->view(), Qt::Key_Escape);
    }
    EXPECT_TRUE(isDismissed(refused));

    // The record was written before the token went, so the registration stands.
    const auto accepted = openAndRegister({true, 300ms});
    EXPECT_TRUE(isDismissed(accepted));
    EXPECT_EQ(stored(), screen().with({5}));
    EXPECT_EQ(dataSet().connectedYubiKeyCount(), 0);
}

TEST_P(Registration, WithoutItsListOrABareSerialItDoesNothing)
{
    plugIn(5);
    service->forgetCalls();
    takeWrites();
    const auto elsewhere = presentElsewhere<RegistrationKeyViewController>("Registration");
    elsewhere->onClickOK(nullptr);
    EXPECT_EQ(elsewhere->view()->isVisible(), staysOpen());
    elsewhere->dismissController();
    const auto dialog = open();
    dialog->serialLabelModel.setText("5\n");
    dialog->onClickOK(nullptr);
    const auto records = messages(file());
    EXPECT_EQ(std::count(records.begin(), records.end(), "Return onClickOK."), 2);
    EXPECT_THAT(service->methods(), IsEmpty());
    EXPECT_EQ(takeWrites(), 0);
}

TEST_P(Registration, ATokenThatWasAddedMeanwhile)
{
    // An account can't get a token meanwhile, and so the dialog does not look once more.
    const bool looksAgain = screen().name != "User";
    plugIn(5);
    const auto dialog = open();
    dataSet().vantroStandaloneSetting = screen().with({5});
    takeWrites();
    QTest::mouseClick(dialog->OKButton, Qt::LeftButton);
    EXPECT_THAT(service->methods(), testing::Contains("CreateCRSettingFile"));
    EXPECT_EQ(messages(file()).back() == "This YubiKey is already assigned. [Serial: 5]", looksAgain);
    EXPECT_EQ(takeWrites(), looksAgain ? 0 : 1);
    EXPECT_EQ(dialog->view()->isVisible(), looksAgain && staysOpen());
}

TEST_P(Registration, ByKeyboardAlone)
{
    plugIn(5);
    list().registerButton->setFocus();
    pressKey(Qt::Key_Space);
    const QPointer dialog(list().findChild<RegistrationKeyViewController*>());
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

    dialog->OKButton->setFocus();
    pressKey(Qt::Key_Return);
    EXPECT_TRUE(isDismissed(dialog));
    EXPECT_EQ(stored(), screen().with({5}));
}

TEST_F(AppFixture, AnAdministratorKeyUnlocksItsSwitch)
{
    plugIn(300);
    auto& list = page<KeyListViewController>("Admin");
    auto* const box = list.view()->findChild<QCheckBox*>();
    EXPECT_FALSE(box->isEnabled());
    const auto dialog = present<RegistrationKeyViewController>(list, list.registerButton);
    QTest::mouseClick(dialog->OKButton, Qt::LeftButton);
    EXPECT_TRUE(isDismissed(dialog));
    EXPECT_TRUE(box->isEnabled());
    for (const bool isOn : {true, false}) {
        QTest::mouseClick(box, Qt::LeftButton);
        EXPECT_EQ(stored().adminSetting.toolLoginAuth, isOn);
    }
}

} // namespace
} // namespace vantro::tests
