#pragma once

#include <memory>
#include <vector>

#include <QObject>
#include <QPointer>
#include <QString>
#include <QWidget>

#include "foundation/DispatchQueue.h"
#include "foundation/NotificationCenter.h"

namespace vantro {

class ModalWindow;

/// A screen: owns its view, follows the view's life cycle, and presents other screens as modal windows. Main thread,
/// but for the handlers given to observe().
class NSViewController : public QObject
{
    Q_OBJECT

  public:
    NSViewController();
    ~NSViewController() override;

    /// The view. The first call makes it, with its outlets, and then calls viewDidLoad().
    QWidget* view();
    [[nodiscard]] bool isViewLoaded() const { return view_ != nullptr; }

    /// The window that shows the view; null while there is none.
    [[nodiscard]] QWidget* window() const;

    /// The controller that presented this one; null when it is not presented.
    [[nodiscard]] NSViewController* presentingViewController() const { return presenter_; }

    /// Shows `presented` in a window of its own, modal for the application and over whatever modal window is in front.
    /// Returns when it is shown. Owns it until it is dismissed.
    void presentAsModalWindow(std::unique_ptr<NSViewController> presented);

    /// Shows `presented` in the same way, and handles events until it has been dismissed.
    void presentAsModalWindowAndWait(std::unique_ptr<NSViewController> presented);

    /// Closes the window of a presented controller. The controller hears no more notifications from here on and is
    /// destroyed when control is back in the event loop, and once no other window stands over its own. Does nothing
    /// when it is not presented.
    void dismissController();

    /// The title of the window that shows this controller's view.
    [[nodiscard]] const QString& title() const { return title_; }
    void setTitle(const QString& title) { title_ = title; }

    /// Calls viewWillAppear(), and after it the shown child's (loading its view); to be called before the window shows.
    void beginAppearance();

    /// Calls viewDidAppear(), and after it the shown child's; to be called when the window is shown.
    void endAppearance();

    /// What a presented controller's window offers in its title bar; it can never be resized, minimised or made full
    /// screen.
    enum class WindowButtons
    {
        Close,
        /// The user can't close the window at all.
        None
    };
    void setWindowButtons(WindowButtons buttons);

    /// The life cycle. viewDidLoad() comes once; the others with each appearance.
    virtual void viewDidLoad() {}
    virtual void viewWillAppear() {}
    virtual void viewDidAppear() {}
    virtual void viewDidDisappear() {}

    /// The user asked to close the window: its close button, or Esc. Dismisses, unless a screen wants something else.
    virtual void cancelOperation() { dismissController(); }

  protected:
    /// Makes the view and connects its outlets. The caller owns what it returns.
    virtual std::unique_ptr<QWidget> loadView() = 0;

    /// The controller whose view is shown inside this one's; null for none.
    [[nodiscard]] virtual NSViewController* shownChild() { return nullptr; }

    /// Observes a notification of the default centre until this controller is dismissed or destroyed. `handler` runs on
    /// the posting thread, perhaps while this controller is being destroyed on the main thread: it must own what it
    /// uses and reach the controller through onMainQueue().
    void observe(const NotificationName& name, NotificationCenter::Handler handler);

    /// Wraps work that touches this controller for the main queue: it is skipped when the controller has been dismissed
    /// or destroyed by then. To be called on the main thread; the result may be copied and handed over on any.
    [[nodiscard]] DispatchQueue::Work onMainQueue(DispatchQueue::Work work) const;

  private:
    void endObservations();

    std::unique_ptr<QWidget> view_;
    QString title_;
    QPointer<NSViewController> presenter_;
    /// Ours, but the window that it stands in front of may take it along.
    QPointer<ModalWindow> modalWindow_;
    std::vector<Observation> observations_;
    /// Gone as soon as the controller hears nothing more; read and reset on the main thread alone.
    std::shared_ptr<bool> liveness_ = std::make_shared<bool>(true);
};

} // namespace vantro
