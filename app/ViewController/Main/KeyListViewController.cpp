#include "ViewController/Main/KeyListViewController.h"

#include <QHeaderView>
#include <QItemSelectionModel>

#include "AppDataSet.h"
#include "appkit/NSStoryboard.h"
#include "appkit/TableAction.h"
#include "ui_KeyListView.h"

namespace vantro {

KeyListViewController::KeyListViewController(const Names& names)
    : logger(AppDataSet::shared().logger.inFile(names.source.file)), names_(names),
      baseLogger_(AppDataSet::shared().logger.onBehalfOf(names.source))
{
}

std::unique_ptr<QWidget> KeyListViewController::loadList(NSArrayControllerBase& arrayController)
{
    auto view = std::make_unique<QWidget>();
    Ui::KeyListView outlets;
    outlets.setupUi(view.get());
    localizeForm(*view, names_.table);
    table_ = outlets.keyTable;
    arrayController_ = &arrayController;
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
    return view;
}

void KeyListViewController::viewDidLoad()
{
    constexpr auto function = "viewDidLoad()";
    baseLogger_.info("Start viewDidLoad.", function);
    baseLogger_.info(names_.finishedViewDidLoad, function);
}

void KeyListViewController::viewWillAppear()
{
    constexpr auto function = "viewWillAppear()";
    baseLogger_.info(names_.startViewWillAppear, function);
    updateView();
    baseLogger_.info("Finished viewWillAppear.", function);
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
    baseLogger_.info("Clicked table.", function);
    if (table_->selectionModel()->hasSelection())
        return;
    baseLogger_.info("The element is not selected.", function);
    arrayController_->setSelectionIndexes({});
}

void KeyListViewController::present(const char* identifier)
{
    presentAsModalWindow(NSStoryboard::named("Main").instantiateController(identifier));
}

void KeyListViewController::showWhetherEmpty()
{
    emptyLabel_->setVisible(arrayController_->rowCount() == 0);
}

} // namespace vantro
