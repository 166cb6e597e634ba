#pragma once

#include <memory>
#include <vector>

#include <QString>
#include <QTabWidget>

#include "appkit/NSViewController.h"

namespace vantro {

/// One tab: its identifier, its label and the controller of its page.
class NSTabViewItem
{
  public:
    NSTabViewItem(QString identifier, QString label, std::unique_ptr<NSViewController> viewController)
        : identifier_(std::move(identifier)), label_(std::move(label)), viewController_(std::move(viewController))
    {
    }

    [[nodiscard]] const QString& identifier() const { return identifier_; }
    [[nodiscard]] const QString& label() const { return label_; }
    [[nodiscard]] NSViewController* viewController() const { return viewController_.get(); }

  private:
    QString identifier_;
    QString label_;
    std::unique_ptr<NSViewController> viewController_;
};

/// A screen of tabs, and the delegate of its own tab view. A page's view is made when the page first appears. Labels
/// that have no room are elided and carry a tool tip; pages that have no room scroll. Main thread.
class NSTabViewController : public NSViewController
{
    Q_OBJECT

  public:
    /// Before the view is made.
    void addTabViewItem(std::unique_ptr<NSTabViewItem> item);

    /// The item that is selected first; before the view is made.
    void setInitialTabViewItem(const QString& identifier) { initialIdentifier_ = identifier; }

    [[nodiscard]] const std::vector<std::unique_ptr<NSTabViewItem>>& tabViewItems() const { return items_; }

    /// Null only while there are no items.
    [[nodiscard]] const NSTabViewItem* selectedTabViewItem() const;

    /// Selects the first item, which tells the delegate; its page is made when the window appears.
    void viewDidLoad() override;

  protected:
    /// A tab is about to be selected, and has been; its page appears in between.
    virtual void tabViewWillSelect(const NSTabViewItem* /*item*/) {}
    virtual void tabViewDidSelect(const NSTabViewItem* /*item*/) {}

    std::unique_ptr<QWidget> loadView() override;
    NSViewController* shownChild() override;

  private:
    void onCurrentChanged(int index);
    NSViewController* loadPage(std::size_t index);

    std::vector<std::unique_ptr<NSTabViewItem>> items_;
    QString initialIdentifier_;
    QPointer<QTabWidget> tabWidget_;
    std::size_t selectedIndex_ = 0;
    bool isPageShown_ = false;
};

} // namespace vantro
