#pragma once

#include <functional>

#include <QDialog>
#include <QPointer>
#include <QWidget>

namespace vantro {

/// The window that shows a view modally. Follows it in size, whenever a text in it changes, and hands every wish to
/// close it on. Main thread.
class ModalWindow : public QDialog
{
    Q_OBJECT

  public:
    /// Takes `content` in, without owning it; `parent` is the window to stay in front of, null for none. `onClose` is
    /// called for each wish to close, and must not outlive its use here.
    ModalWindow(QWidget* content, QWidget* parent, std::function<void()> onClose);

    /// Lets the content go, which somebody else owns.
    ~ModalWindow() override;

    void reject() override;

  protected:
    void closeEvent(QCloseEvent* event) override;
    bool event(QEvent* event) override;

  private:
    void fitContent();

    QPointer<QWidget> content_;
    std::function<void()> onClose_;
};

} // namespace vantro
