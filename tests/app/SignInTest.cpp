// The dialog of the tool's own sign-in, and how the check ends without an answer.

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QLabel>
#include <QMouseEvent>
#include <QTest>
#include <QTimer>

#include "LoginAuthAlertMessage.h"
#include "LoginAuthentication.h"
#include "app/AppFixture.h"

namespace vantro::tests {
namespace {

using AuthResult = LoginAuthentication::AuthResult;
using testing::IsEmpty;

constexpr std::uint64_t adminKey = 11;

TEST_F(AppFixture, ACheckIsOfAnAdministratorKeyAndEndsAtItsLimitOrWithAnErrorAtOnce)
{
    prefix.store({.adminSetting = {.adminKeys = {adminKey}}});
    plugIn(22);
    EXPECT_EQ(LoginAuthentication::authenticate(), AuthResult::NotAdminYubiKey) << "though the service confirms it";
    unplug();
    plugIn(adminKey);
    LoginAuthentication::validationLimit = 100ms;
    service->script("Validate", {{ScriptedService::Silence{}}});
    EXPECT_EQ(LoginAuthentication::authenticate(), AuthResult::CRFailure);

    LoginAuthentication::validationLimit = ample;
    const auto start = std::chrono::steady_clock::now();
    service->script("Validate", {{ScriptedService::Refusal{}}});
    EXPECT_EQ(LoginAuthentication::authenticate(), AuthResult::CRFailure);
    service.reset();
    EXPECT_EQ(LoginAuthentication::authenticate(), AuthResult::CRFailure);
    EXPECT_LT(std::chrono::steady_clock::now() - start, ample / 2);
}

class SignInDialog : public AppFixture
{
  protected:
    SignInDialog() { prefix.store({.adminSetting = {.toolLoginAuth = true, .adminKeys = {adminKey}}}); }

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
    static QString reason() { return dialog()->findChild<QLabel*>("reasonLabel")->text(); }
    static void press(const char* key)
    {
        const QString title = localizedString("LoginAuthAlertView", key);
        for (auto* const button : dialog()->findChildren<QPushButton*>())
            if (button->text() == title)
                QTest::mouseClick(button, Qt::LeftButton);
    }
    static bool isOpen() { return dialog() != nullptr && dialog()->isVisible(); }
};

TEST_F(SignInDialog, SaysWhyItRefusesUntilAnAdministratorKeyIsConfirmed)
{
    const auto isUnread = [] { return reason().startsWith(localizedString("TokenObstacle", "serial_not_read")); };
    open({{isOpen, [&] { plugIn(0); }},
          {isUnread,
           [&] {
               press("authenticate_button");
               EXPECT_EQ(text(), LoginAuthAlertMessage::authFailure());
               EXPECT_TRUE(isUnread());
               unplug();
           }},
          {[] { return reason().isEmpty(); }, [&] { plugIn(adminKey); }},
          {[&] { return dataSet().connectedYubiKeySerial() == adminKey; },
           [&] {
               service->script("Validate", {{false}, {true}});
               service->script("LastFailure", {{std::string("not-touched")}});
               press("authenticate_button");
               EXPECT_EQ(text(), LoginAuthAlertMessage::authFailure());
               EXPECT_EQ(reason(), localizedString("ServiceFailure", "not-touched"));
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
