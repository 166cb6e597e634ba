#include "appkit/ModalWindow.h"

#include <QCloseEvent>
#include <QVBoxLayout>

namespace vantro {

ModalWindow::ModalWindow(QWidget* content, QWidget* parent, std::function<void()> onClose)
    : QDialog(parent), content_(content), onClose_(std::move(onClose))
{
    setWindowModality(Qt::ApplicationModal);
    auto* const box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSizeConstraint(QLayout::SetNoConstraint);
    box->addWidget(content);
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
    if (content_)
        content_->setParent(nullptr);
}

void ModalWindow::reject()
{
    onClose_();
}

void ModalWindow::closeEvent(QCloseEvent* event)
{
    event->ignore();
    onClose_();
}

} // namespace vantro
