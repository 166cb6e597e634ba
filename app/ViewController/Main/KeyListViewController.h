#pragma once

#include <memory>
#include <vector>

#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTableView>

#include "LoggerManager/Logger.h"
#include "appkit/NSArrayController.h"
#include "appkit/NSViewController.h"
#include "appkit/StringTable.h"

namespace vantro {

/// What the three key lists have in common: a table whose rows are rebuilt from the settings document with each
/// appearance, and two buttons that present the registration and the deletion dialog. They never change the document.
/// Main thread.
class KeyListViewController : public NSViewController
{
    Q_OBJECT

  public:
    void viewDidLoad() override;
    void viewWillAppear() override;

    /// Selects no row.
    void clearTableSelection();

    QPointer<QPushButton> registerButton;
    QPointer<QPushButton> deleteButton;

  protected:
    /// How a list stands in the log, its string table, and the storyboard's names of its two dialogs.
    struct Names
    {
        LogSource source;
        const char* table;
        const char* finishedViewDidLoad;
        const char* startViewWillAppear;
        const char* registrationDialog;
        const char* deletionDialog;
    };

    explicit KeyListViewController(const Names& names);

    /// Makes the page of the rows in `arrayController`, which stays; for loadView().
    std::unique_ptr<QWidget> loadList(NSArrayControllerBase& arrayController);

    /// Reloads the page from the settings document.
    void updateView();

    /// Stores the rows of the settings document.
    virtual void rebuildRows() = 0;

    /// The last step of updateView(); for what a page has beside its list.
    virtual void finishUpdate() {}

    /// The array controller of a list with one column, the serial.
    template <class Row>
    std::unique_ptr<NSArrayController<Row>> makeSerialColumn(KeyValueArray<Row>& rows)
    {
        using Column = typename NSArrayController<Row>::Column;
        return std::make_unique<NSArrayController<Row>>(
            rows, std::vector<Column>{{localizedString(names_.table, "column_serial"),
                                       [](const Row& row) { return QString::fromStdString(row.serial()); }}});
    }

    /// For the page itself.
    const Logger logger;

  private:
    void onTableClicked();
    void present(const char* identifier);
    void showWhetherEmpty();

    const Names names_;
    const Logger baseLogger_;
    QPointer<QTableView> table_;
    QPointer<NSArrayControllerBase> arrayController_;
    QPointer<QLabel> emptyLabel_;
};

} // namespace vantro
