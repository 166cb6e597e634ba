#include "appkit/NSApplication.h"

#include <cstdint>
#include <cstdlib>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

#include <QApplication>
#include <QSocketNotifier>

#include "appkit/StringTable.h"
#include "foundation/DispatchQueue.h"

namespace vantro {

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
    const int wakeEvent = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    auto* const notifier = new QSocketNotifier(wakeEvent, QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [wakeEvent] {
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t read = ::read(wakeEvent, &count, sizeof count);
        DispatchQueue::main().runPending();
    });
    DispatchQueue::main().attach([wakeEvent] {
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = ::write(wakeEvent, &one, sizeof one);
    });
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
    front->raise();
    front->activateWindow();
}

void NSApplication::terminate()
{
    // The other threads run to the very end, so nothing that they use may be destroyed before them.
    std::quick_exit(EXIT_SUCCESS);
}

int NSApplicationMain(int argc, char** argv, const MainStoryboard& storyboard)
{
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    NSApplication::attachMainQueue();
    installStringTables(storyboard.stringTables);

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
