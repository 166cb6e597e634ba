#include "appkit/ModalWindow.h"

#include <QCloseEvent>
#include <QVBoxLayout>

#include "appkit/NSViewController.h"

namespace vantro {

ModalWindow::ModalWindow(NSViewController* controller, QWidget* parent) : QDialog(parent), controller_(controller)
{
    setWindowModality(Qt::ApplicationModal);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto* const content = new QVBoxLayout(this);
    content->setContentsMargins(0, 0, 0, 0);
    content->setSizeConstraint(QLayout::SetFixedSize);
    content->addWidget(controller->view());
}

void ModalWindow::releaseView()
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
