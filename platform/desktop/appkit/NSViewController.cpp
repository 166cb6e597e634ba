#include "appkit/NSViewController.h"

#include <algorithm>
#include <utility>

#include <QApplication>
#include <QDialog>
#include <QEventLoop>

#include "appkit/ModalWindow.h"

namespace vantro {

NSViewController::NSViewController() = default;

NSViewController::~NSViewController()
{
    endObservations();
    delete modalWindow_.data();
}

QWidget* NSViewController::view()
{
    if (!view_) {
        view_ = loadView();
        viewDidLoad();
    }
    return view_.get();
}

QWidget* NSViewController::window() const
{
    return view_ && view_->window() != view_.get() ? view_->window() : nullptr;
}

void NSViewController::presentAsModalWindow(std::unique_ptr<NSViewController> presented)
{
    NSViewController* const controller = presented.release();
    controller->setParent(this);
    controller->presenter_ = this;
    controller->view();

    QWidget* front = QApplication::activeModalWidget();
    if (front == nullptr)
        front = window();
    controller->modalWindow_ = std::make_unique<ModalWindow>(controller->view(), front, [controller] {
                                   controller->cancelOperation();
                               }).release();
    controller->setWindowButtons(WindowButtons::Close);
    controller->modalWindow_->setWindowTitle(controller->title());
    controller->beginAppearance();
    controller->modalWindow_->show();
    controller->modalWindow_->raise();
    controller->modalWindow_->activateWindow();
    controller->endAppearance();
}

void NSViewController::presentAsModalWindowAndWait(std::unique_ptr<NSViewController> presented)
{
    QEventLoop untilDismissed;
    connect(presented.get(), &QObject::destroyed, &untilDismissed, &QEventLoop::quit);
    presentAsModalWindow(std::move(presented));
    untilDismissed.exec();
}

void NSViewController::beginAppearance()
{
    viewWillAppear();
    if (NSViewController* const child = shownChild()) {
        child->view();
        child->beginAppearance();
    }
}

void NSViewController::endAppearance()
{
    viewDidAppear();
    if (NSViewController* const child = shownChild())
        child->endAppearance();
}

void NSViewController::setWindowButtons(WindowButtons buttons)
{
    if (!modalWindow_)
        return;
    Qt::WindowFlags flags = Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint;
    flags.setFlag(Qt::WindowCloseButtonHint, buttons == WindowButtons::Close);
    modalWindow_->setWindowFlags(flags);
}

void NSViewController::dismissController()
{
    if (!modalWindow_ || !liveness_)
        return;
    endObservations();
    modalWindow_->hide();
    // A window manager that loses two windows in one go may give the focus to none.
    if (QWidget* const behind = modalWindow_->parentWidget())
        behind->window()->activateWindow();
    viewDidDisappear();
    // An alert over this window has it as its parent, and still waits for its answer.
    const auto over = modalWindow_->findChildren<QDialog*>(Qt::FindDirectChildrenOnly);
    const auto shown =
        std::find_if(over.begin(), over.end(), [](const QDialog* dialog) { return dialog->isVisible(); });
    if (shown == over.end())
        deleteLater();
    else
        connect(*shown, &QObject::destroyed, this, &QObject::deleteLater);
}

void NSViewController::observe(const NotificationName& name, NotificationCenter::Handler handler)
{
    observations_.push_back(NotificationCenter::defaultCenter().addObserver(name, std::move(handler)));
}

DispatchQueue::Work NSViewController::onMainQueue(DispatchQueue::Work work) const
{
    return [liveness = std::weak_ptr(liveness_), work = std::move(work)] {
        if (!liveness.expired())
            work();
    };
}

void NSViewController::endObservations()
{
    observations_.clear();
    liveness_.reset();
}

} // namespace vantro
