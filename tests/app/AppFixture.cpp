#include "app/AppFixture.h"

#include <array>
#include <cstring>
#include <filesystem>
#include <future>
#include <regex>
#include <sys/inotify.h>
#include <utility>

#include <QTest>
#include <unistd.h>

#include "DefaultsKeys.h"
#include "LoggerManager/LoggerManager.h"
#include "LoginAuthentication.h"
#include "ServiceRequests.h"
#include "ViewController/Main/KeyListViewController.h"
#include "appkit/NSStoryboard.h"
#include "appkit/NSTabViewController.h"
#include "appkit/StringTable.h"
#include "appkit/UserDefaults.h"
#include "usb/HIDDeviceMonitor.h"

namespace vantro::tests {

bool spinUntil(const std::function<bool()>& condition)
{
    return QTest::qWaitFor(condition, static_cast<int>(std::chrono::milliseconds(ample).count()));
}

bool activate(QWidget& window)
{
    window.activateWindow();
    return spinUntil([&window] {
        const QWidget* const modal = QApplication::activeModalWidget();
        return QApplication::activeWindow() == &window || (modal != nullptr && modal != &window);
    });
}

void pressKey(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    if (QWidget* const modal = QApplication::activeModalWidget()) {
        ASSERT_TRUE(activate(*modal));
    }
    QTest::keyClick(QGuiApplication::focusWindow(), key, modifiers);
}

std::ostream& operator<<(std::ostream& stream, const ShownAlert& alert)
{
    return stream << alert.message.toStdString() << ": " << alert.information.toStdString();
}

AppFixture::AppFixture() : replacements_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK))
{
    // Replacements that follow each other at once are told apart by the new file's creation between them.
    ::inotify_add_watch(replacements_.get(), prefix.settings().c_str(), IN_MOVED_TO | IN_CREATE);
    serviceReplyLimit = ample;
    LoginAuthentication::validationLimit = ample;
    QApplication::setQuitOnLastWindowClosed(false);
    NSApplication::attachMainQueue();
    installStringTables(QStringLiteral(":/strings"));
    NSAlert::setPresenter([this](NSAlert& alert) { return present(alert); });
}

AppFixture::~AppFixture()
{
    NSAlert::setPresenter({});
    window_.reset();
}

VantroStandaloneSetting AppFixture::stored() const
{
    return readSetting(XML::parse(contentOf(prefix.settingsDocument())));
}

int AppFixture::takeWrites()
{
    int writes = 0;
    alignas(inotify_event) std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t size = ::read(replacements_.get(), buffer.data(), buffer.size());
        if (size <= 0)
            return writes;
        for (ssize_t position = 0; position < size;) {
            inotify_event event = {};
            std::memcpy(&event, buffer.data() + position, sizeof event);
            const char* const name = buffer.data() + position + sizeof event;
            if ((event.mask & IN_MOVED_TO) != 0 && prefix.settingsDocument().filename() == name)
                ++writes;
            position += static_cast<ssize_t>(sizeof event + event.len);
        }
    }
}

NSWindow& AppFixture::window()
{
    if (!window_) {
        UserDefaults::standard().set(defaults_key::suppression, true);
        UserDefaults::standard().set(defaults_key::isFirstStart, false);
        window_ = std::make_unique<NSWindow>(NSStoryboard::named("Main").instantiateController("TabViewController"));
        window_->makeKeyAndOrderFront();
        EXPECT_TRUE(activate(*window_));
    }
    return *window_;
}

void AppFixture::click(QWidget* widget)
{
    QTest::mouseClick(widget, Qt::LeftButton);
}

NSViewController& AppFixture::switchTo(const char* identifier)
{
    auto& tabs = dynamic_cast<NSTabViewController&>(*window().contentViewController());
    const auto& items = tabs.tabViewItems();
    const auto item = std::find_if(items.begin(), items.end(), [identifier](const auto& candidate) {
        return candidate->identifier() == QLatin1String(identifier);
    });
    window().findChild<QTabWidget*>()->setCurrentIndex(static_cast<int>(item - items.begin()));
    return *(*item)->viewController();
}

QPointer<RegistrationKeyViewController> AppFixture::openRegistration(const char* tab)
{
    auto& list = page<KeyListViewController>(tab);
    return present<RegistrationKeyViewController>(list, list.registerButton);
}

void AppFixture::expectAlerts(const std::vector<ShownAlert>& expected)
{
    EXPECT_EQ(std::exchange(alerts, {}), expected);
}

void AppFixture::onMonitorThread(const std::function<void()>& work)
{
    const auto done = std::async(std::launch::async, work);
    EXPECT_TRUE(spinUntil([&done] { return done.wait_for(0s) == std::future_status::ready; }));
}

void AppFixture::postConnected(std::size_t reportSize)
{
    NotificationCenter::defaultCenter().post(HIDDeviceConnected,
                                             HIDDevice{"/sys/devices/token", 0x1050, 0x0407, reportSize});
}

void AppFixture::postDisconnected()
{
    NotificationCenter::defaultCenter().post(HIDDeviceDisconnected, HIDDevice{});
}

void AppFixture::plugIn(std::uint64_t serial)
{
    dataSet();
    service->script("GetSerial", {{serial}});
    onMonitorThread([] {
        postConnected(8);
        postConnected(64);
    });
}

void AppFixture::unplug()
{
    onMonitorThread([] {
        postDisconnected();
        postDisconnected();
    });
}

std::string AppFixture::wholeLog() const
{
    return contentOf(LoggerManager::logFile("VantroStandalone"));
}

std::vector<std::string> AppFixture::log(const std::string& file) const
{
    std::vector<std::string> records;
    const std::string text = wholeLog().substr(forgottenLog_);
    const std::regex record(R"(\S+ (\S+) (\S+):\d+ (.*)\n)");
    for (std::sregex_iterator found(text.begin(), text.end(), record), end; found != end; ++found)
        if (found->str(2) == file)
            records.push_back((found->str(1) == "info" ? "" : found->str(1) + " ") + found->str(3));
    return records;
}

std::vector<std::string> AppFixture::messages(const std::string& file) const
{
    auto records = log(file);
    for (std::string& record : records)
        record.erase(0, record.find(' ') + 1);
    return records;
}

void AppFixture::forgetLog()
{
    forgottenLog_ = wholeLog().size();
}

void AppFixture::expectRecorded(const std::string& name, const std::string& file) const
{
    std::string records;
    for (const std::string& record : log(file))
        records += record + '\n';
    EXPECT_EQ(records, contentOf(std::filesystem::path(RECORDED_LOGS) / (name + ".log")));
}

int AppFixture::present(NSAlert& alert)
{
    alerts.push_back({alert.messageText, alert.informativeText,
                      QStringList(alert.buttons().begin(), alert.buttons().end()), alert.alertStyle,
                      alert.defaultButton, alert.accessoryText, alert.suppressionTitle, alert.windowTitle});
    if (whileAlert)
        whileAlert();
    alert.isSuppressed = ticksSuppression;
    if (answers.empty())
        return NSAlert::firstButtonReturn;
    const int answer = answers.front();
    answers.pop_front();
    return answer;
}

} // namespace vantro::tests
