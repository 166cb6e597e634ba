// Tokens that come and go all the time, under the real monitor, while a person works the tool.

#include <algorithm>
#include <array>
#include <atomic>
#include <random>
#include <thread>

#include <QDialogButtonBox>
#include <QLabel>
#include <QTableView>
#include <QTest>
#include <QTimer>

#include "ViewController/Main/KeyListViewController.h"
#include "app/AppFixture.h"
#include "appkit/ModalWindow.h"
#include "emulation/VirtualToken.h"

namespace vantro::tests {
namespace {

constexpr int cycles = 1000;
constexpr int cyclesBehindTheSignIn = 200;
constexpr int dialogsOpened = 50;

class TokenStorm : public AppFixture
{
  protected:
    TokenStorm()
    {
        prefix.store({.users = {{"adam", {1}}}, .adminSetting = {.toolLoginAuth = true, .adminKeys = {11, 22}}});
        // Now and then a serial can't be read, or the service refuses to say it.
        std::deque<ScriptedService::Answer> serials;
        for (std::uint64_t request = 0; request < cycles; ++request) {
            serials.push_back({request % 20 == 19 ? 0 : 11 * (request % 3 + 1)});
            if (request % 50 == 49)
                serials.back().content = ScriptedService::Refusal{};
        }
        service->script("GetSerial", serials);
        service->script("Validate", {{false}});
    }

    /// Plugs one of the tokens in or pulls it out, a thousand times and until the person has opened
    /// some dialogs meanwhile; in the end all are out.
    void rage()
    {
        std::mt19937 random(1);
        while (plugged_ < cycles || opened_ < dialogsOpened) {
            auto& token = tokens_.at(random() % tokens_.size());
            if (token.isPluggedIn()) {
                token.unplug();
            } else {
                token.plugIn();
                ++plugged_;
            }
        }
        for (auto& token : tokens_)
            token.unplug();
    }

    /// What a person may do with the window that is in front, one thing a call.
    void work()
    {
        EXPECT_LE(alertsShown(), 1);
        QWidget* const front = QApplication::activeModalWidget();
        if (front == nullptr) {
            openDialog();
        } else if (auto* const buttons = front->findChild<QDialogButtonBox*>()) {
            answer(*front, *buttons);
        } else {
            QTest::keyClick(front, Qt::Key_Escape);
            front->close();
        }
    }

    /// The windows of dialogs and of the alert, which alone has no buttons.
    [[nodiscard]] static QList<QWidget*> dialogs()
    {
        auto all = QApplication::topLevelWidgets();
        all.removeIf([](const QWidget* widget) { return qobject_cast<const ModalWindow*>(widget) == nullptr; });
        return all;
    }
    [[nodiscard]] static std::ptrdiff_t alertsShown()
    {
        return std::ranges::count_if(dialogs(), [](const QWidget* dialog) {
            return dialog->isVisible() && dialog->findChild<QDialogButtonBox*>() == nullptr;
        });
    }

    std::array<lab::VirtualToken, 3> tokens_{{{bed, {}}, {bed, {}}, {bed, {}}}};
    std::atomic<int> plugged_ = 0;
    /// What the person has done: dialogs opened, sign-ins tried.
    std::atomic<int> opened_ = 0;
    int tries_ = 0;

  private:
    void openDialog()
    {
        if (!window().isVisible())
            return;
        constexpr std::array pages = {"UserKey", "MasterKey", "Admin"};
        auto& list = page<KeyListViewController>(pages.at(random_() % pages.size()));
        const bool isDeletion = random_() % 2 == 0;
        if (isDeletion)
            list.view()->findChild<QTableView*>()->selectAll();
        QTest::mouseClick(isDeletion ? list.deleteButton : list.registerButton, Qt::LeftButton);
        ++opened_;
    }

    void answer(QWidget& dialog, const QDialogButtonBox& buttons)
    {
        const bool isSignIn = dialog.findChild<QLabel*>("errorMessageLabel") != nullptr;
        if (isSignIn) {
            ++tries_;
            if (plugged_ >= cyclesBehindTheSignIn)
                service->script("Validate", {{true}});
        }
        for (auto* const button : buttons.buttons())
            if (buttons.buttonRole(button) == QDialogButtonBox::AcceptRole && (isSignIn || random_() % 2 == 0)) {
                QTest::mouseClick(button, Qt::LeftButton);
                return;
            }
        if (!isSignIn)
            QTest::keyClick(&dialog, Qt::Key_Escape);
    }

    std::mt19937 random_{2};
};

TEST_F(TokenStorm, LeavesCountAndAlertRight)
{
    dataSet();
    std::atomic<bool> isOver = false;
    std::thread storm([&] {
        rage();
        isOver = true;
    });
    QTimer person;
    QObject::connect(&person, &QTimer::timeout, &person, [this] { work(); });
    person.start(5ms);
    window();
    EXPECT_GE(plugged_, cyclesBehindTheSignIn) << "the sign-in was passed before it was confirmed";
    EXPECT_GT(tries_, 0);
    while (!isOver)
        QTest::qWait(1);
    storm.join();
    person.stop();
    ASSERT_TRUE(spinUntil([&] { return dataSet().connectedYubiKeyCount() == 0 && alertsShown() == 0; }))
        << dataSet().connectedYubiKeyCount() << " tokens, " << alertsShown() << " alerts after " << plugged_
        << " plugged in";
    EXPECT_EQ(dataSet().connectedYubiKeySerial(), std::nullopt);

    // Nothing hangs: the dialog that is left can be closed, and the next tokens bring the next alert.
    if (QWidget* const front = QApplication::activeModalWidget())
        QTest::keyClick(front, Qt::Key_Escape);
    ASSERT_TRUE(spinUntil([] { return dialogs().empty(); }));
    service->script("GetSerial", {{std::uint64_t{11}}});
    for (auto& token : tokens_)
        token.plugIn();
    EXPECT_TRUE(spinUntil([this] { return dataSet().connectedYubiKeyCount() == 3 && alertsShown() == 1; }));
    for (auto& token : tokens_)
        token.unplug();
    EXPECT_TRUE(spinUntil([this] { return dataSet().connectedYubiKeyCount() == 0 && dialogs().empty(); }));
}

} // namespace
} // namespace vantro::tests
