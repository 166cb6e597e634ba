#include "ViewController/Main/KeyListViewController.h"

#include <QHeaderView>
#include <QItemSelectionModel>

#include "AppDataSet.h"
#include "Resources/Storyboards.h"
#include "appkit/TableAction.h"

namespace vantro {

KeyListViewController::KeyListViewController(const Names& names)
    : logger(AppDataSet::shared().logger.inFile(names.sourceFile)), names_(names)
{
}

void KeyListViewController::connectOutlets(const Outlets& outlets)
{
    table_ = outlets.table;
    arrayController_ = outlets.arrayController;
    emptyLabel_ = outlets.emptyLabel;
    registerButton = outlets.registerButton;
    deleteButton = outlets.deleteButton;

    arrayController_->setTableView(table_);
    table_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table_->horizontalHeader()->setDefaultAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    connect(arrayController_, &QAbstractItemModel::modelReset, this, &KeyListViewController::showWhetherEmpty);

    // The table owns its action.
    new TableAction(table_, [this] { onTableClicked(); });
    connect(registerButton, &QPushButton::clicked, this, [this] { present(names_.registrationDialog); });
    connect(deleteButton, &QPushButton::clicked, this, [this] { present(names_.deletionDialog); });
}

void KeyListViewController::viewDidLoad()
{
    constexpr auto function = "viewDidLoad()";
    logger.info("Start viewDidLoad.", function);
    logger.info(names_.finishedViewDidLoad, function);
}

void KeyListViewController::viewWillAppear()
{
    constexpr auto function = "viewWillAppear()";
    logger.info(names_.startViewWillAppear, function);
    updateView();
    logger.info("Finished viewWillAppear.", function);
}

void KeyListViewController::updateView()
{
    rebuildRows();
    clearTableSelection();
    registerButton->setEnabled(true);
    deleteButton->setEnabled(true);
    finishUpdate();
}

void KeyListViewController::clearTableSelection()
{
    arrayController_->setSelectionIndexes({});
}

void KeyListViewController::onTableClicked()
{
    constexpr auto function = "onTableClicked()";
    logger.info("Clicked table.", function);
    if (table_->selectionModel()->hasSelection())
        return;
    logger.info("The element is not selected.", function);
    arrayController_->setSelectionIndexes({});
}

void KeyListViewController::present(const char* identifier)
{
    presentAsModalWindow(mainStoryboard().instantiateController(identifier));
}

void KeyListViewController::showWhetherEmpty()
{
    emptyLabel_->setVisible(arrayController_->rowCount() == 0);
}

} // namespace vantro
