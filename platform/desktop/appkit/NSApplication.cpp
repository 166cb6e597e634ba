#include "appkit/NSApplication.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include <QApplication>
#include <QIcon>
#include <QImageReader>
#include <QPixmap>
#include <QSocketNotifier>

#include "appkit/StringTable.h"
#include "foundation/DispatchQueue.h"
#include "foundation/WakeEvent.h"

namespace vantro {

namespace {

/// Has `handler` run on the main thread after each wake() of the event, which is never destroyed.
const WakeEvent& makeWakeEvent(std::function<void()> handler)
{
    const auto* const event = new WakeEvent;
    auto* const notifier =
        new QSocketNotifier(event->fileDescriptor(), QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [event, handler = std::move(handler)] {
        event->clear();
        handler();
    });
    return *event;
}

/// What the signal handler, which may do next to nothing, wakes.
std::atomic<const WakeEvent*> activationEvent = nullptr;
static_assert(std::atomic<const WakeEvent*>::is_always_lock_free);

void comeToFrontOnActivationSignal()
{
    activationEvent = &makeWakeEvent(&NSApplication::activateIgnoringOtherApps);
    struct sigaction action = {};
    action.sa_handler = [](int) {
        const int before = errno;
        activationEvent.load()->wake();
        errno = before;
    };
    action.sa_flags = SA_RESTART;
    ::sigaction(NSApplication::activationSignal, &action, nullptr);
}

QIcon iconOf(const QStringList& files)
{
    QIcon icon;
    for (const QString& file : files) {
        // A toolkit that has to find out what a file is loads all that it has for reading images.
        QImageReader reader(file, "png");
        reader.setAutoDetectImageFormat(false);
        icon.addPixmap(QPixmap::fromImageReader(&reader));
    }
    return icon;
}

/// The toolkit ends the process by exit() when the display has gone, which destroys what other threads still use. The
/// main thread's own objects are the first to be destroyed, and the process ends there.
class ExitGuard
{
  public:
    ExitGuard() = default;
    ~ExitGuard()
    {
        std::fflush(nullptr);
        std::_Exit(EXIT_FAILURE);
    }
    ExitGuard(const ExitGuard&) = delete;
    ExitGuard& operator=(const ExitGuard&) = delete;
};

} // namespace

NSWindow::NSWindow(std::unique_ptr<NSViewController> contentViewController)
    : controller_(std::move(contentViewController))
{
}

NSWindow::~NSWindow()
{
    // The view belongs to its controller, which goes after this body.
    if (QWidget* const view = takeCentralWidget())
        view->setParent(nullptr);
}

void NSWindow::makeKeyAndOrderFront()
{
    QWidget* const view = controller_->view();
    setCentralWidget(view);
    setWindowTitle(controller_->title());
    controller_->beginAppearance();
    show();
    activateWindow();
    controller_->endAppearance();
}

void NSWindow::setContentSize(const QSize& size)
{
    resize(size);
}

void NSApplication::attachMainQueue()
{
    // Woken through a file descriptor, since the toolkit's own way to reach its thread hands objects over that a
    // thread checker can't follow.
    const WakeEvent& wakeEvent = makeWakeEvent([] { DispatchQueue::main().runPending(); });
    DispatchQueue::main().attach([&wakeEvent] { wakeEvent.wake(); });
    // What was handed over before there was a queue to wake.
    DispatchQueue::main().async([] {});
}

void NSApplication::activateIgnoringOtherApps()
{
    QWidget* front = QApplication::activeModalWidget();
    for (QWidget* const window : QApplication::topLevelWidgets())
        if (front == nullptr && window->isVisible())
            front = window;
    if (front == nullptr)
        return;
    for (QWidget* window = front; window != nullptr; window = window->parentWidget())
        window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    front->raise();
    front->activateWindow();
    // A desktop that lets no window come to the front by itself marks it at least.
    QApplication::alert(front);
}

void NSApplication::terminate()
{
    // The other threads run to the very end, so nothing that they use may be destroyed before them.
    std::fflush(nullptr);
    std::quick_exit(EXIT_SUCCESS);
}

int NSApplicationMain(int argc, char** argv, const MainStoryboard& storyboard)
{
    thread_local const ExitGuard exitGuard;
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setDesktopFileName(storyboard.desktopName);
    QApplication::setWindowIcon(iconOf(storyboard.icons));
    NSApplication::attachMainQueue();
    installStringTables(storyboard.stringTables);
    comeToFrontOnActivationSignal();
    if (!storyboard.mayLaunch())
        NSApplication::terminate();

    const auto delegate = storyboard.makeDelegate();
    QObject::connect(&application, &QApplication::lastWindowClosed, &application, [&delegate] {
        if (delegate->applicationShouldTerminateAfterLastWindowClosed())
            NSApplication::terminate();
    });
    delegate->applicationDidFinishLaunching();

    NSWindow window(storyboard.makeInitialController());
    window.makeKeyAndOrderFront();
    QApplication::exec();
    NSApplication::terminate();
}

} // namespace vantro
