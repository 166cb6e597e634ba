#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <QLabel>
#include <QPointer>
#include <QString>
#include <QStringList>

#include "Model/LabelModel.h"
#include "ViewController/Main/ListDialog.h"
#include "appkit/NSAlert.h"

namespace vantro {

/// What the three deletion dialogs have in common: they show what is selected in the presenting list, ask once more
/// before the last keys go while something depends on them, take the keys out of the document and the list, write, and
/// close. The tokens' challenge-response files stay. Main thread.
class DeletionKeyViewController : public ListDialogViewController
{
    Q_OBJECT

  public:
    void viewDidLoad() override;
    void onClickOK(QObject* sender) override;

    QPointer<QLabel> confirmationLabel;
    LabelModel labelModel;

  protected:
    struct Texts
    {
        /// The string table of what the form shows.
        const char* table;
        std::function<QString()> isNothingSelected;
        /// What the warning before the last keys go says.
        std::function<QString()> isLastKey;
    };

    DeletionKeyViewController(const LogSource& source, Texts texts);

    std::unique_ptr<QWidget> loadView() override;

    /// One line for each selected row, in the list's order.
    [[nodiscard]] virtual QStringList selectedLines() = 0;

    /// Whether any row of the list's table is selected.
    [[nodiscard]] virtual bool hasSelectedRows() = 0;

    /// Whether this deletion needs the warning: something depends on the keys that are left, and none would be.
    [[nodiscard]] virtual bool isLastKeyDeletion() = 0;

    /// Takes the selected keys out of the document, writes it and logs.
    virtual void removeFromSetting() = 0;

    /// Takes the selected rows out of the list and clears the list's selection.
    virtual void removeFromList() = 0;

    /// Called when document and list are done; for what must follow when no key is left.
    virtual void finishRemoval() = 0;

    /// Whether the dialog writes the usual records about its loading.
    [[nodiscard]] virtual bool logsLoading() const { return true; }

  private:
    [[nodiscard]] NSAlert createAlert() const;
    void showNothingSelected();
    void deleteKeys();

    const Texts texts_;
};

/// A deletion dialog of the list `List`, whose array controller it reads the selection of and removes rows from.
template <class List>
class DeletionFromListViewController : public DialogOfList<List, DeletionKeyViewController>
{
  protected:
    using DialogOfList<List, DeletionKeyViewController>::DialogOfList;
    using Row = typename List::Row;

    /// How a row is shown.
    [[nodiscard]] virtual QString lineOf(const Row& row) const { return QString::fromStdString(row.serial()); }

    [[nodiscard]] std::vector<Row> selectedRows() { return this->list()->arrayController().selectedObjects(); }

    QStringList selectedLines() override
    {
        QStringList lines;
        for (const Row& row : selectedRows())
            lines += lineOf(row);
        return lines;
    }

    bool hasSelectedRows() override { return !this->list()->arrayController().selectionIndexes().empty(); }

    void removeFromList() override
    {
        auto& rows = this->list()->arrayController();
        rows.removeAtArrangedObjectIndexes(rows.selectionIndexes());
        this->list()->clearTableSelection();
    }
};

/// What a user or master key deletion has to do when it has left no token that opens an account: makes the add-on's
/// PAM entries no longer demand one and, when that succeeded, switches forced token logon off and writes the document
/// once more. Does nothing while such a token is left.
void releaseForcedLogonWithoutKeys(const Logger& logger);

} // namespace vantro
