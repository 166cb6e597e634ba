// The three registration dialogs, clicked and typed into as a person does.

#include <thread>

#include <QLabel>
#include <QTest>

#include "CommonMessage.h"
#include "ServiceRequests.h"
#include "ViewController/Main/RegistrationKeyViewController.h"
#include "app/ScreenFixture.h"
#include "foundation/DispatchQueue.h"
#include "support/WaitUntil.h"

namespace vantro::tests {
namespace {

using Answer = ScriptedService::Answer;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

const Answer jump{std::string("jump")};
const Answer unknownMethod{ScriptedService::Refusal{"org.freedesktop.DBus.Error.UnknownInterface"}};
const Answer accessDenied{ScriptedService::Refusal{"org.freedesktop.DBus.Error.AccessDenied"}};

class Registration : public ScreenFixture
{
  protected:
    QPointer<RegistrationKeyViewController> open() { return openRegistration(screen().tab); }
    static bool staysOpen() { return screen().afterRefusal == Screen::AfterRefusal::StayOpen; }
    static QString notConnected() { return screen().message("yubiKey_is_not_connected"); }
    static std::string file() { return screen().file("Registration"); }
};

INSTANTIATE_TEST_SUITE_P(Of, Registration, allScreens(), nameOf);

TEST_P(Registration, FollowsTheTokensAndWritesTheFileThenTheDocumentThenTheList)
{
    prefix.store(screen().with({3, 9}));
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
    expectAlerts({});
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
        {plugInUnread(accessDenied, ""), text("serial_not_read", "access-denied")},
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

struct FailedRequest
{
    const char* name;
    /// Absent when there is no service.
    std::optional<Answer> answer;
    /// What the service says when it is asked why.
    Answer reason;
    bool waitsForTheLimit;
    /// The reason that is told; empty when there is none.
    const char* told = "";
};

TEST_F(AppFixture, ARequestThatFailsSaysWhyWithinItsLimit)
{
    const FailedRequest requests[] = {
        {"no reason", Answer{false}, {std::string()}, false},
        {"a reason", Answer{false}, {std::string("slot-not-programmed")}, false, "slot-not-programmed"},
        {"a reason of a later version", Answer{false}, {std::string("later")}, false},
        {"a service that gives no reasons", Answer{false}, unknownMethod, false},
        {"silence about the reason", Answer{false}, {ScriptedService::Silence()}, true},
        {"an error", Answer{ScriptedService::Refusal()}, jump, true},
        {"denied", accessDenied, unknownMethod, true, "access-denied"},
        {"silence", Answer{ScriptedService::Silence()}, jump, true},
        {"too late", Answer{true, 400ms}, jump, true},
        {"no service", std::nullopt, unknownMethod, true, "service-missing"},
    };
    dataSet();
    for (const auto& [name, answer, reason, waitsForTheLimit, told] : requests) {
        SCOPED_TRACE(name);
        serviceReplyLimit = waitsForTheLimit ? 200ms : std::chrono::milliseconds(ample);
        if (answer) {
            service->script("CreateCRSettingFile", {*answer});
            service->script("LastFailure", {reason});
        } else {
            service.reset();
        }
        const auto start = std::chrono::steady_clock::now();
        ServiceFailure failure;
        EXPECT_FALSE(createCRSettingFile(5, &failure));
        EXPECT_EQ(std::chrono::steady_clock::now() - start >= 200ms, waitsForTheLimit);
        EXPECT_EQ(failure.sentence(), *told == 0 ? QString() : localizedString("ServiceFailure", told));
    }
}

TEST_P(Registration, OfATokenThatIsPulledOutMeanwhileStandsOrFallsWithItsFile)
{
    prefix.store(screen().with({3}));
    dataSet();
    const auto openAndRegister = [&](const Answer& answer) {
        plugIn(5);
        service->forgetCalls();
        service->script("CreateCRSettingFile", {answer});
        service->script("LastFailure", {jump});
        auto dialog = open();
        takeWrites();
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
    expectAlerts({{CommonMessage::warning(), ServiceFailure("jump").below(CommonMessage::CRFailureAlert())}});
    EXPECT_THAT(messages(file()), Contains("Failed to update the CR setting file."));
    EXPECT_EQ(stored(), screen().with({3}));
    EXPECT_EQ(takeWrites(), 0);
    EXPECT_EQ(rows().size(), 1);
    if (staysOpen()) {
        EXPECT_FALSE(refused->OKButton->isEnabled());
        pressKey(Qt::Key_Escape);
        EXPECT_EQ(messages(file()).back(), "Called onClickCancel.");
    }
    EXPECT_TRUE(isDismissed(refused));

    // The record was written before the token went, so the registration stands.
    EXPECT_TRUE(isDismissed(openAndRegister({true, 300ms})));
    EXPECT_EQ(stored(), screen().with({3, 5}));
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
    EXPECT_THAT(service->methods(), Contains("CreateCRSettingFile"));
    EXPECT_EQ(messages(file()).back() == "This YubiKey is already assigned. [Serial: 5]", looksAgain);
    EXPECT_EQ(takeWrites(), looksAgain ? 0 : 1);
    EXPECT_EQ(dialog->view()->isVisible(), looksAgain && staysOpen());
}

} // namespace
} // namespace vantro::tests
