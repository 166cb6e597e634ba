#pragma once

#include <csignal>
#include <functional>
#include <memory>

#include <QMainWindow>
#include <QStringList>
#include <QWidget>

#include "appkit/NSViewController.h"

namespace vantro {

/// What the application tells its delegate. Main thread.
class NSApplicationDelegate
{
  public:
    virtual ~NSApplicationDelegate() = default;

    /// The application is ready to show windows.
    virtual void applicationDidFinishLaunching() = 0;

    /// The last window has been closed; true ends the process.
    virtual bool applicationShouldTerminateAfterLastWindowClosed() = 0;
};

/// What the program's main storyboard makes at start, in this order.
struct MainStoryboard
{
    /// Whether the program may start at all; false ends the process. It may show alerts.
    std::function<bool()> mayLaunch;
    std::function<std::unique_ptr<NSApplicationDelegate>()> makeDelegate;
    std::function<std::unique_ptr<NSViewController>()> makeInitialController;
    /// The resource folder of the string tables.
    QString stringTables;
    /// The name of the program's desktop file, without its suffix: by it a desktop knows which program a window is of.
    QString desktopName;
    /// The resource files of the program's icon, drawn for different sizes.
    QStringList icons;
};

/// A window that shows the view of a controller and takes the controller along the view's life cycle. Main thread.
class NSWindow : public QMainWindow
{
    Q_OBJECT

  public:
    /// Owns the controller.
    explicit NSWindow(std::unique_ptr<NSViewController> contentViewController);
    ~NSWindow() override;

    /// Makes the view and shows the window in front.
    void makeKeyAndOrderFront();

    [[nodiscard]] NSViewController* contentViewController() const { return controller_.get(); }

    /// Gives the content a new size. The top left corner stays where it is.
    void setContentSize(const QSize& size);

  private:
    std::unique_ptr<NSViewController> controller_;
};

/// The application as a whole. Main thread.
class NSApplication
{
  public:
    /// Makes the calling thread the main thread and its queue the toolkit's: what is handed to DispatchQueue::main()
    /// runs in the toolkit's event loop, nested ones included. Once, when the toolkit's application object is there;
    /// the connection belongs to that.
    static void attachMainQueue();

    /// Brings the application's front window before all others, as far as the desktop lets it.
    static void activateIgnoringOtherApps();

    /// The signal by which another process of the same user asks this one to come to the front. It is understood from
    /// before mayLaunch() on.
    static constexpr int activationSignal = SIGUSR1;

    /// Ends the process at once, from anywhere, after flushing its output streams.
    [[noreturn]] static void terminate();
};

/// Runs the application: makes what the main storyboard names, shows the initial window, and handles events until the
/// process ends. Does not return in normal operation. An exit() on the main thread ends the process with EXIT_FAILURE,
/// without destroying any static object.
int NSApplicationMain(int argc, char** argv, const MainStoryboard& storyboard);

} // namespace vantro
