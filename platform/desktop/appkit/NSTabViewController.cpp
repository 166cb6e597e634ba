#include "appkit/NSTabViewController.h"

#include <algorithm>
#include <utility>

#include <QScrollArea>
#include <QTabBar>

namespace vantro {

void NSTabViewController::addTabViewItem(std::unique_ptr<NSTabViewItem> item)
{
    items_.push_back(std::move(item));
}

const NSTabViewItem* NSTabViewController::selectedTabViewItem() const
{
    return selectedIndex_ < items_.size() ? items_[selectedIndex_].get() : nullptr;
}

std::unique_ptr<QWidget> NSTabViewController::loadView()
{
    auto tabs = std::make_unique<QTabWidget>();
    tabWidget_ = tabs.get();
    tabs->setDocumentMode(true);
    tabs->setElideMode(Qt::ElideRight);
    tabs->setUsesScrollButtons(false);
    for (const auto& item : items_) {
        auto page = std::make_unique<QScrollArea>();
        page->setFrameShape(QFrame::NoFrame);
        page->setWidgetResizable(true);
        page->setFocusPolicy(Qt::NoFocus);
        const int index = tabs->addTab(page.release(), item->label());
        tabs->setTabToolTip(index, item->label());
    }
    const auto initial = std::find_if(items_.begin(), items_.end(),
                                      [this](const auto& item) { return item->identifier() == initialIdentifier_; });
    if (initial != items_.end())
        selectedIndex_ = static_cast<std::size_t>(initial - items_.begin());
    tabs->setCurrentIndex(static_cast<int>(selectedIndex_));
    connect(tabs.get(), &QTabWidget::currentChanged, this, &NSTabViewController::onCurrentChanged);
    return tabs;
}

void NSTabViewController::viewDidLoad()
{
    tabViewWillSelect(selectedTabViewItem());
    tabViewDidSelect(selectedTabViewItem());
}

NSViewController* NSTabViewController::loadPage(std::size_t index)
{
    NSViewController* const controller = items_[index]->viewController();
    auto* const page = qobject_cast<QScrollArea*>(tabWidget_->widget(static_cast<int>(index)));
    if (page->widget() == nullptr) {
        controller->setParent(nullptr);
        page->setWidget(controller->view());
    }
    return controller;
}

NSViewController* NSTabViewController::shownChild()
{
    if (items_.empty())
        return nullptr;
    isPageShown_ = true;
    return loadPage(selectedIndex_);
}

void NSTabViewController::onCurrentChanged(int index)
{
    const std::size_t previous = std::exchange(selectedIndex_, static_cast<std::size_t>(index));
    const NSTabViewItem* const item = selectedTabViewItem();
    tabViewWillSelect(item);
    if (isPageShown_) {
        NSViewController* const page = loadPage(selectedIndex_);
        page->beginAppearance();
        items_[previous]->viewController()->viewDidDisappear();
        page->endAppearance();
    }
    tabViewDidSelect(item);
}

} // namespace vantro
