#include "appkit/ModalWindow.h"

#include <QCloseEvent>
#include <QVBoxLayout>

#include "appkit/NSViewController.h"

namespace vantro {

ModalWindow::ModalWindow(NSViewController* controller, QWidget* parent) : QDialog(parent), controller_(controller)
{
    setWindowModality(Qt::ApplicationModal);
    auto* const content = new QVBoxLayout(this);
    content->setContentsMargins(0, 0, 0, 0);
    content->setSizeConstraint(QLayout::SetNoConstraint);
    content->addWidget(controller->view());
    fitContent();
}

void ModalWindow::fitContent()
{
    // Wrapped texts have a height only for a given width, which a layout's own fixed size does not ask for.
    const int width = layout()->totalMinimumSize().width();
    const int height =
        layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width) : layout()->totalSizeHint().height();
    setFixedSize(width, height);
}

bool ModalWindow::event(QEvent* event)
{
    const bool isHandled = QDialog::event(event);
    if (event->type() == QEvent::LayoutRequest)
        fitContent();
    return isHandled;
}

ModalWindow::~ModalWindow()
{
    if (controller_->isViewLoaded())
        controller_->view()->setParent(nullptr);
}

void ModalWindow::reject()
{
    controller_->cancelOperation();
}

void ModalWindow::closeEvent(QCloseEvent* event)
{
    event->ignore();
    controller_->cancelOperation();
}

} // namespace vantro
