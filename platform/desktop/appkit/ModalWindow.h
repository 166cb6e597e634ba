#pragma once

#include <QDialog>

namespace vantro {

class NSViewController;

/// The window of a presented controller. Follows its content in size, whenever a text in it changes, and hands every
/// wish to close it to the controller. Main thread.
class ModalWindow : public QDialog
{
    Q_OBJECT

  public:
    /// `parent` is the window to stay in front of; null for none. Takes the controller's view in, without owning it.
    ModalWindow(NSViewController* controller, QWidget* parent);

    /// Lets the view go, which its controller owns.
    ~ModalWindow() override;

    void reject() override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    bool event(QEvent* event) override;

  private:
    void fitContent();

    NSViewController* controller_;
};

} // namespace vantro
