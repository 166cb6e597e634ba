// The tool's own sign-in: the check and its dialog.

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QLabel>
#include <QMouseEvent>
#include <QTimer>

#include "LoginAuthAlertMessage.h"
#include "LoginAuthentication.h"
#include "Resources/Storyboards.h"
#include "ViewController/Alert/LoginAuthAlertViewController.h"
#include "app/AppFixture.h"
#include "appkit/UserDefaults.h"

namespace vantro::tests {
namespace {

using AuthResult = LoginAuthentication::AuthResult;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

struct Check
{
    const char* name;
    /// The tokens that are plugged in; 0 is one whose serial can't be read.
    Serials tokens;
    /// What the service answers.
    ScriptedService::Answer answer;
    AuthResult result;
    bool isServiceAsked;
};

class Authentication : public AppFixture, public testing::WithParamInterface<Check>
{
};

constexpr std::uint64_t adminKey = 11;

INSTANTIATE_TEST_SUITE_P(
    SignIn, Authentication,
    testing::Values(Check{"Success", {adminKey}, {true}, AuthResult::Success, true},
                    Check{"CRFailure", {adminKey}, {false}, AuthResult::CRFailure, true},
                    Check{"ErrorReply", {adminKey}, {ScriptedService::Refusal{}}, AuthResult::CRFailure, true},
                    Check{"NotConnected", {}, {true}, AuthResult::NotConnected, false},
                    Check{"MultipleConnected", {22, adminKey}, {true}, AuthResult::MultipleConnected, false},
                    Check{"SerialAcquisitionError", {0}, {true}, AuthResult::SerialAcquisitionError, false},
                    Check{"NotAdminYubiKey", {22}, {true}, AuthResult::NotAdminYubiKey, false}),
    [](const auto& instance) { return instance.param.name; });

TEST_P(Authentication, HasSixResults)
{
    const Check& check = GetParam();
    store({.users = {{"tester", {22}}}, .masterKeys = {22}, .adminKeys = {5, adminKey}});
    for (const std::uint64_t token : check.tokens)
        plugIn(token);
    service->forgetCalls();
    service->script("Validate", {check.answer});
    forgetLog();

    EXPECT_EQ(LoginAuthentication::authenticate(), check.result);

    EXPECT_EQ(service->methods().size(), check.isServiceAsked ? 1U : 0U);
    std::vector<std::string> expected = {"authenticate() Start login authentication."};
    if (check.tokens.size() == 1 && check.tokens[0] != 0)
        expected.push_back("authenticate() [Serial: " + std::to_string(check.tokens[0]) + "]");
    expected.push_back("authenticate() [Result: " + LoginAuthentication::rawValue(check.result) + "]");
    EXPECT_THAT(log("LoginAuthentication"), ElementsAreArray(expected));
}

TEST_F(AppFixture, ASilentServiceEndsTheCheckAtItsLimitAndADeadOneAtOnce)
{
    store({.adminKeys = {adminKey}});
    plugIn(adminKey);
    LoginAuthentication::validationLimit = 100ms;
    service->script("Validate", {{ScriptedService::Silence{}}});
    EXPECT_EQ(LoginAuthentication::authenticate(), AuthResult::CRFailure);

    LoginAuthentication::validationLimit = ample;
    service.reset();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(LoginAuthentication::authenticate(), AuthResult::CRFailure);
    EXPECT_LT(std::chrono::steady_clock::now() - start, ample / 2);
}

class SignInDialog : public AppFixture
{
  protected:
    SignInDialog()
    {
        store({.adminKeys = {adminKey}, .toolLoginAuth = true});
        UserDefaults::standard().set(QStringLiteral("suppression"), true);
        UserDefaults::standard().set(QStringLiteral("isFirstStart"), false);
    }

    /// Opens the main window, which blocks until the sign-in is over; meanwhile runs the steps, each once its condition
    /// holds.
    struct Step
    {
        std::function<bool()> isDue;
        std::function<void()> act;
    };
    void open(std::deque<Step> steps)
    {
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &timer, [&steps] {
            if (steps.empty() || !steps.front().isDue())
                return;
            const Step step = steps.front();
            steps.pop_front();
            step.act();
        });
        timer.start(5ms);
        window();
        EXPECT_THAT(steps, IsEmpty());
    }

    static QWidget* dialog() { return QApplication::activeModalWidget(); }
    static QString text() { return dialog()->findChild<QLabel*>("errorMessageLabel")->text(); }
    static void press(const char* key)
    {
        const QString title = localizedString("LoginAuthAlertView", key);
        for (auto* const button : dialog()->findChildren<QPushButton*>())
            if (button->text() == title)
                QTest::mouseClick(button, Qt::LeftButton);
    }
    static bool isOpen() { return dialog() != nullptr && dialog()->isVisible(); }
    /// On a thread of its own, since the main one is in the dialog's event loop.
    void plugInMeanwhile(std::uint64_t serial)
    {
        service->script("GetSerial", {{serial}});
        std::thread([] { postConnected(64); }).detach();
    }
};

TEST_F(SignInDialog, RefusesUntilAnAdministratorKeyIsConfirmedAndShowsNothingBefore)
{
    const auto nothingElseIsThere = [] {
        for (const QWidget* const widget : QApplication::topLevelWidgets())
            EXPECT_TRUE(!widget->isVisible() || widget == dialog()) << widget->metaObject()->className();
    };
    const auto counted = [this](std::int64_t count) {
        return [this, count] { return dataSet().connectedYubiKeyCount() == count; };
    };
    open({{isOpen,
           [&] {
               nothingElseIsThere();
               press("authenticate_button");
               EXPECT_EQ(text(), LoginAuthAlertMessage::notConnectedYubiKey());
               plugInMeanwhile(22);
           }},
          {counted(1),
           [&] {
               press("authenticate_button");
               EXPECT_EQ(text(), LoginAuthAlertMessage::notAdminKey());
               nothingElseIsThere();
               std::thread([] {
                   postDisconnected();
                   postDisconnected();
               }).detach();
           }},
          {counted(0), [&] { plugInMeanwhile(adminKey); }},
          {[&] { return dataSet().connectedYubiKeySerial() == adminKey; },
           [&] {
               service->script("Validate", {{false}, {true}});
               press("authenticate_button");
               EXPECT_EQ(text(), LoginAuthAlertMessage::authFailure());
               press("authenticate_button");
           }}});
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(dialog(), nullptr);
}

TEST_F(SignInDialog, ADoubleClickAndClicksDuringTheWaitStartOneCheck)
{
    plugIn(adminKey);
    service->script("Validate", {{false, 100ms}, {true}});
    const auto checks = [this] {
        const auto methods = service->methods();
        return std::count(methods.begin(), methods.end(), "Validate");
    };
    open({{isOpen,
           [&] {
               auto* const button = dialog()->findChild<QDialogButtonBox*>()->buttons().front();
               const QPointF center = button->rect().center();
               for (const auto& [type, buttons] : {std::pair(QEvent::MouseButtonPress, Qt::LeftButton),
                                                   std::pair(QEvent::MouseButtonRelease, Qt::NoButton)})
                   QCoreApplication::postEvent(button,
                                               std::make_unique<QMouseEvent>(type, center, button->mapToGlobal(center),
                                                                             Qt::LeftButton, buttons, Qt::NoModifier)
                                                   .release());
               QTest::mouseClick(button, Qt::LeftButton);
               QTest::mouseDClick(button, Qt::LeftButton);
               QTest::mouseRelease(button, Qt::LeftButton);
           }},
          {[] { return dialog()->findChild<QDialogButtonBox*>()->buttons().front()->isEnabled(); },
           [&] {
               EXPECT_EQ(checks(), 1);
               press("authenticate_button");
               EXPECT_EQ(checks(), 2);
           }}});
}

TEST_F(SignInDialog, ClosingItInAnyOtherWayQuits)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const std::pair<const char*, std::function<void()>> ways[] = {
        {"close button", [] { dialog()->close(); }},
        {"escape", [] { QTest::keyClick(dialog(), Qt::Key_Escape); }},
        {"quit button", [] { press("quit_button"); }},
    };
    for (const auto& [name, close] : ways)
        EXPECT_EXIT(open({{isOpen, close}}), testing::ExitedWithCode(EXIT_SUCCESS),
                    "viewDidDisappear\\(\\) Close application\\.")
            << name;
}

} // namespace
} // namespace vantro::tests
