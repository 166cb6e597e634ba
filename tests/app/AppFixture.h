#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <QApplication>
#include <QPointer>
#include <QPushButton>
#include <QString>
#include <QStringList>
#include <QTabWidget>
#include <gmock/gmock.h>

#include "AppDataSet.h"
#include "CommonMessage.h"
#include "VantroStandaloneSetting/SettingText.h"
#include "ViewController/Main/RegistrationKeyViewController.h"
#include "appkit/NSAlert.h"
#include "appkit/NSApplication.h"
#include "emulation/TokenBed.h"
#include "foundation/FileDescriptor.h"
#include "support/PlainBus.h"
#include "support/ScriptedService.h"
#include "support/TemporaryPrefix.h"

/// Test failures show texts as texts.
inline void PrintTo(const QString& text, std::ostream* stream)
{
    *stream << '"' << text.toStdString() << '"';
}

namespace vantro {

inline void PrintTo(const VantroStandaloneSetting& setting, std::ostream* stream)
{
    *stream << serialised(setting);
}

} // namespace vantro

namespace vantro::tests {

using namespace std::chrono_literals;

/// Far longer than anything takes; a condition that is waited for this long does not come.
constexpr auto ample = 20s;

/// Handles events, and destroys what is to be destroyed, until `condition` holds; false when it does not in time.
[[nodiscard]] bool spinUntil(const std::function<bool()>& condition);

/// Gives a window the focus, unless a modal one stands in front of it; false when it does not get it.
[[nodiscard]] bool activate(QWidget& window);

/// A key press for the modal window in front, or else for the one that has the focus.
void pressKey(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

/// An alert as it was shown; a warning with the button OK where nothing else is said.
struct ShownAlert
{
    QString message{};
    QString information{};
    QStringList buttons{CommonMessage::ok()};
    NSAlert::Style style = NSAlert::Style::Warning;
    int defaultButton = NSAlert::firstButtonReturn;
    QString accessory{};
    std::optional<QString> suppression{};
    QString windowTitle = QStringLiteral("Vantro Standalone (Version 1.0.0)");

    friend bool operator==(const ShownAlert&, const ShownAlert&) = default;
    friend std::ostream& operator<<(std::ostream& stream, const ShownAlert& alert);
};

/// The settings tool in this process, as far as its window: an installation and a bus of its own, a scripted service
/// that answers true, alerts that are answered by the test, and tokens that come and go on a thread that stands for
/// the monitor's.
class AppFixture : public testing::Test
{
  public:
    AppFixture();
    ~AppFixture() override;

  protected:
    /// What the settings document's file holds.
    [[nodiscard]] VantroStandaloneSetting stored() const;
    /// How often the document's file was replaced since the last call.
    int takeWrites();

    AppDataSet& dataSet() { return AppDataSet::shared(); }

    /// The main window, opened as on any start but the first, when it is not open yet.
    NSWindow& window();
    /// The page of a tab, which is switched to.
    template <class Page>
    Page& page(const char* identifier)
    {
        return dynamic_cast<Page&>(switchTo(identifier));
    }
    NSViewController& switchTo(const char* identifier);

    /// Clicks it as a mouse does.
    static void click(QWidget* widget);
    /// Clicks a button of a page, and answers the dialog that the page presents then; null when it presents none.
    template <class Dialog>
    QPointer<Dialog> present(NSViewController& page, QPushButton* button)
    {
        click(button);
        return page.findChild<Dialog*>();
    }
    /// The dialog that registers a key in the list of a tab.
    QPointer<RegistrationKeyViewController> openRegistration(const char* tab);
    /// Whether a dialog is gone by now or soon. The main window is in front again then, as a desktop does it.
    template <class Dialog>
    [[nodiscard]] bool isDismissed(const QPointer<Dialog>& dialog)
    {
        const bool isGone = spinUntil([&] { return dialog.isNull(); });
        return isGone && (QApplication::activeModalWidget() != nullptr || activate(window()));
    }

    /// Runs `work` on a thread that stands for the monitor's, and handles events until it has returned.
    void onMonitorThread(const std::function<void()>& work);
    static void postConnected(std::size_t reportSize);
    static void postDisconnected();
    /// One token with two interfaces, whose serial the service gives away.
    void plugIn(std::uint64_t serial);
    void unplug();

    /// The log's records of a source file since the last forgetLog(), each "FUNCTION MESSAGE", and with its level in
    /// front unless that is info.
    [[nodiscard]] std::vector<std::string> log(const std::string& file) const;
    /// The messages alone.
    [[nodiscard]] std::vector<std::string> messages(const std::string& file) const;
    void forgetLog();
    /// All that the tool has logged, as it stands in the file.
    [[nodiscard]] std::string wholeLog() const;
    /// Compares the log's records of a source file, one a line, with recorded/NAME.log.
    void expectRecorded(const std::string& name, const std::string& file) const;

    /// Forgets the alerts that were shown, which must be these.
    void expectAlerts(const std::vector<ShownAlert>& expected);
    std::vector<ShownAlert> alerts;
    /// The answers to the next alerts; the first button when there is none left.
    std::deque<int> answers;
    /// Whether an alert's suppression box gets ticked.
    bool ticksSuppression = false;
    /// Called while an alert is shown.
    std::function<void()> whileAlert;

    TemporaryPrefix prefix;
    lab::TokenBed bed;
    PlainBus bus;
    std::optional<ScriptedService> service{std::in_place};

  private:
    int present(NSAlert& alert);

    int argumentCount_ = 1;
    std::string name_ = "vantro-standalone";
    std::vector<char*> arguments_{name_.data(), nullptr};
    QApplication application_{argumentCount_, arguments_.data()};
    std::unique_ptr<NSWindow> window_;
    std::size_t forgottenLog_ = 0;
    FileDescriptor replacements_;
};

} // namespace vantro::tests
