// The main window: its titles, the tool's start, the recovery of a broken document, and several tokens at once.

#include <cstdlib>
#include <iostream>
#include <thread>

#include <QAbstractButton>
#include <QMessageBox>
#include <QTimer>

#include "Alerts.h"
#include "ApplicationVersion.h"
#include "CommonMessage.h"
#include "DefaultsKeys.h"
#include "ServiceRequests.h"
#include "StartMessage.h"
#include "ViewController/Alert/MultipleConnectionsAlertViewController.h"
#include "app/AppFixture.h"
#include "appkit/NSStoryboard.h"
#include "appkit/NSTabViewController.h"
#include "appkit/UserDefaults.h"

namespace vantro::tests {
namespace {

using testing::Contains;
using testing::ElementsAre;

constexpr auto tabSource = "ViewController/Main/TabViewController";

class MainWindow : public AppFixture
{
  protected:
    /// Opens the window with the user defaults as the test left them.
    std::unique_ptr<NSWindow> open()
    {
        auto opened =
            std::make_unique<NSWindow>(NSStoryboard::named("Main").instantiateController("TabViewController"));
        opened->makeKeyAndOrderFront();
        return opened;
    }
};

TEST_F(MainWindow, CarriesTheVersionUntilTheFirstTabSwitch)
{
    prefix.store({});
    EXPECT_EQ(window().windowTitle(), "Vantro Standalone (Version 1.0.0)");
    EXPECT_EQ(window().size(), QSize(420, 340));
    expectAlerts({});
    std::vector<bool> loaded;
    for (const auto& item : dynamic_cast<NSTabViewController&>(*window().contentViewController()).tabViewItems())
        loaded.push_back(item->viewController()->isViewLoaded());
    EXPECT_THAT(loaded, ElementsAre(false, true, false, false)) << "pages are made when they first appear";

    window().resize(600, 500);
    const QPoint topLeft = window().pos();
    switchTo("MasterKey");
    EXPECT_EQ(window().windowTitle(), localizedString("TabView", "tab_master_keys"));
    EXPECT_EQ(window().size(), QSize(420, 340));
    EXPECT_EQ(window().pos(), topLeft);
}

TEST_F(MainWindow, AsksForAccessUntilToldNotTo)
{
    prefix.store({});
    UserDefaults::standard().set(defaults_key::isFirstStart, false);
    open().reset();
    ticksSuppression = true;
    open().reset();
    open().reset();
    const ShownAlert alert{.message = CommonMessage::installAfterAlertMessage(),
                           .buttons = {CommonMessage::close()},
                           .accessory = CommonMessage::installAfterAlertInfo(),
                           .suppression = CommonMessage::doNotDisplay()};
    expectAlerts({alert, alert});
    EXPECT_THAT(messages(tabSource), Contains("Do not display alerts."));
}

TEST_F(MainWindow, QuitsOnceOnTheVeryFirstStart)
{
    // One configuration for this process and the one that the exit is watched in.
    constexpr auto variable = "VANTRO_TEST_CONFIGURATION";
    if (*::getenv(variable) == '\0')
        ::setenv(variable, prefix.configHome().c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", ::getenv(variable), 1);
    prefix.store({});
    EXPECT_EXIT(open(), testing::ExitedWithCode(EXIT_SUCCESS),
                "Display Alert(.|\n)*Close the application for the first time");
    // The window would end this process, too, and with success.
    ASSERT_EQ(UserDefaults::standard().object(defaults_key::isFirstStart), false)
        << "an entry is left behind, although it says false";
    EXPECT_TRUE(open()->isVisible());
}

TEST_F(MainWindow, SaysWhyEveryStartIsTheFirstOne)
{
    ::setenv("XDG_CONFIG_HOME", "/proc/nowhere", 1);
    prefix.store({});
    whileAlert = [this] { std::cerr << alerts.back().message.toStdString() << '\n'; };
    EXPECT_EXIT(open(), testing::ExitedWithCode(EXIT_SUCCESS),
                testing::HasSubstr(StartMessage::defaultsNotStoredHeading().toStdString()));
}

TEST_F(MainWindow, KeepsABrokenDocumentAndStartsAfresh)
{
    const std::string broken = "<VantroStandaloneSetting version=\"1\"><Users>";
    writeFile(prefix.settingsDocument(), broken);
    // The results of the requests are not looked at, and an error is waited for like silence.
    serviceReplyLimit = 100ms;
    service->script("SavePamSetting", {{false}, {ScriptedService::Refusal{}}, {true}});

    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(contentOf(prefix.settingsDocument().string() + ".invalid"), broken);
    EXPECT_EQ(stored(), VantroStandaloneSetting());
    EXPECT_EQ(dataSet().vantroStandaloneSetting, VantroStandaloneSetting());
    EXPECT_THAT(service->pamCalls(), ElementsAre("authorization:3", "screensaver:3", "screensaver_new:3"));
    expectAlerts({{CommonMessage::warning(), CommonMessage::unexpectedChangeSetting()}});
    EXPECT_THAT(messages(tabSource), Contains("Setting file is invalid."));
}

class SeveralTokens : public AppFixture
{
  protected:
    using Alert = MultipleConnectionsAlertViewController;
    QPointer<Alert> alert() { return window().contentViewController()->findChild<Alert*>(); }
    QPointer<Alert> waitForAlert()
    {
        EXPECT_TRUE(spinUntil([this] { return alert() && alert()->view()->isVisible(); }));
        return alert();
    }
    QPointer<Alert> bringAlert()
    {
        plugIn(1);
        plugIn(2);
        return waitForAlert();
    }
    void pullAllOut()
    {
        while (dataSet().connectedYubiKeyCount() > 0)
            unplug();
        EXPECT_TRUE(spinUntil([this] { return alert().isNull(); }));
    }
    static constexpr auto alertFile = "ViewController/Alert/MultipleConnectionsAlertViewController";
};

TEST_F(SeveralTokens, BringOneAlertThatOnlyTheLastTokenCloses)
{
    prefix.store({});
    window();
    for (int round = 0; round < 2; ++round) {
        plugIn(1);
        EXPECT_EQ(alert(), nullptr);
        plugIn(2);
        const auto shown = waitForAlert();
        EXPECT_EQ(shown->window()->windowTitle(), windowTitleWithVersion());
        plugIn(3);
        unplug();
        unplug();
        EXPECT_TRUE(shown->view()->isVisible());
        pullAllOut();
    }
    expectRecorded("several-tokens", alertFile);
    EXPECT_THAT(messages(tabSource), Contains("An alert has already been displayed."));
}

TEST_F(SeveralTokens, LeaveTheDialogBehindTheAlertAsItWasOrOutliveIt)
{
    prefix.store({});
    for (const bool isCancelled : {true, true, false}) {
        const auto dialog = openRegistration("UserKey");
        const auto shown = bringAlert();
        EXPECT_EQ(QApplication::activeModalWidget(), shown->window());
        EXPECT_EQ(shown->window()->parentWidget(), dialog->window());
        if (isCancelled) {
            // As assistive technology does, which reaches the dialog's button although another window is in front.
            dialog->onClickCancel(dialog);
            EXPECT_FALSE(dialog->view()->isVisible());
            unplug();
            EXPECT_TRUE(dialog) << "the alert's window goes with the dialog's";
            EXPECT_EQ(QApplication::activeModalWidget(), shown->window());
            EXPECT_TRUE(shown->view()->isVisible());
        }
        pullAllOut();
        if (isCancelled) {
            EXPECT_TRUE(isDismissed(dialog));
        } else {
            EXPECT_EQ(QApplication::activeModalWidget(), dialog->window());
            EXPECT_TRUE(dialog->window()->isVisible());
        }
    }
}

TEST_F(SeveralTokens, ThatGoLeaveAnAlertOverTheirs)
{
    prefix.store({});
    NSAlert::setPresenter({});
    // They are there before the window is.
    bringAlert();
    const auto box = [] { return qobject_cast<QMessageBox*>(QApplication::activeModalWidget()); };
    bool isAnswered = false;
    QTimer whileShown;
    QObject::connect(&whileShown, &QTimer::timeout, &whileShown, [&] {
        if (box() == nullptr)
            return;
        whileShown.stop();
        unplug();
        unplug();
        EXPECT_TRUE(spinUntil([&] { return !alert() || !alert()->view()->isVisible(); }));
        EXPECT_FALSE(isAnswered);
        ASSERT_NE(box(), nullptr);
        box()->buttons().front()->click();
    });
    whileShown.start();
    createOKButtonOnlyAlert(NSAlert::Style::Warning, QStringLiteral("message"), QString()).runModal();
    isAnswered = true;
    pullAllOut();
}

TEST_F(SeveralTokens, ThatHaveGoneBeforeTheAlertAppearsLeaveNone)
{
    prefix.store({});
    window();
    service->script("GetSerial", {{std::uint64_t{1}}, {std::uint64_t{2}}});
    // The main thread is busy meanwhile, as with a request to the service.
    std::thread([] {
        postConnected(64);
        postConnected(64);
        for (int interface = 0; interface < 4; ++interface)
            postDisconnected();
    }).join();
    EXPECT_TRUE(spinUntil([&] { return !log(alertFile).empty() && messages(alertFile).back() == "Close window."; }));
    pullAllOut();
    bringAlert();
}

} // namespace
} // namespace vantro::tests
