// The three key lists.

#include <QLabel>
#include <QSignalSpy>

#include "ViewController/Main/KeyListViewController.h"
#include "app/AppFixture.h"

namespace vantro::tests {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

class KeyList : public AppFixture
{
  protected:
    static QTableView& tableOf(NSViewController& page) { return *page.view()->findChild<QTableView*>(); }
    /// What the table shows, a row as its columns with a space between.
    static QStringList rowsOf(NSViewController& page)
    {
        const QAbstractItemModel& model = *tableOf(page).model();
        QStringList rows;
        for (int row = 0; row < model.rowCount(); ++row) {
            QStringList columns;
            for (int column = 0; column < model.columnCount(); ++column)
                columns += model.index(row, column).data().toString();
            rows += columns.join(' ');
        }
        return rows;
    }
};

TEST_F(KeyList, ShowsTheDocumentInItsOwnOrderAndNothingSelected)
{
    store({.users = {{"zoe", {1000, 999}}, {"empty", {}}, {"Adam", {1000}}},
           .masterKeySetting = {.masterKeys = {9, 18446744073709551615U, 3}},
           .adminSetting = {.adminKeys = {7, 5}}});
    const struct
    {
        const char* tab;
        const char* file;
        QStringList rows;
        std::vector<std::string> loading;
        std::vector<std::string> appearing;
    } lists[] = {
        {"UserKey",
         "ViewController/Main/User/UserViewController",
         {"zoe 1000", "zoe 999", "Adam 1000"},
         {"viewDidLoad() Start viewDidLoad.", "viewDidLoad() Finished viewDidLoad."},
         {"viewWillAppear() Start viewWillAppear", "viewWillAppear() Finished viewWillAppear."}},
        {"MasterKey",
         "ViewController/Main/Master/MasterKeyViewController",
         {"9", "18446744073709551615", "3"},
         {"viewDidLoad() Start viewDidLoad.", "viewDidLoad() Finished viewDidLoad"},
         {"viewWillAppear() Start viewWillAppear.", "viewWillAppear() Finished viewWillAppear."}},
        {"Admin",
         "ViewController/Main/Admin/AdminViewContorller",
         {"7", "5"},
         {"viewDidLoad() Start viewDidLoad.", "viewDidLoad() Finished viewDidLoad."},
         {"viewWillAppear() Start viewWillAppear", "viewWillAppear() Finished viewWillAppear."}},
    };
    for (const auto& list : lists) {
        auto& page = this->page<KeyListViewController>(list.tab);
        auto all = list.loading;
        all.insert(all.end(), list.appearing.begin(), list.appearing.end());
        EXPECT_THAT(log(list.file), ElementsAreArray(all));
        EXPECT_EQ(rowsOf(page), list.rows);
        EXPECT_FALSE(page.view()->findChild<QLabel*>("emptyLabel")->isVisible());

        // A click beyond the rows takes the selection from the table and its controller alike.
        QTableView& table = tableOf(page);
        table.selectAll();
        forgetLog();
        QTest::mouseClick(table.viewport(), Qt::LeftButton, {}, table.viewport()->rect().bottomLeft() + QPoint(5, -2));
        EXPECT_TRUE(spinUntil([&] { return log(list.file).size() >= 2; }));
        EXPECT_THAT(log(list.file),
                    ElementsAre("onTableClicked() Clicked table.", "onTableClicked() The element is not selected."));
        EXPECT_FALSE(table.selectionModel()->hasSelection());
        forgetLog();
        QTest::mouseClick(table.viewport(), Qt::LeftButton, {}, table.visualRect(table.model()->index(0, 0)).center());
        EXPECT_TRUE(spinUntil([&] { return !log(list.file).empty(); }));
        EXPECT_THAT(log(list.file), ElementsAre("onTableClicked() Clicked table."));
        EXPECT_TRUE(table.selectionModel()->hasSelection());

        // Another appearance shows the document as it is by then.
        switchTo("Setting");
        dataSet().vantroStandaloneSetting = VantroStandaloneSetting();
        forgetLog();
        switchTo(list.tab);
        EXPECT_THAT(log(list.file), ElementsAreArray(list.appearing));
        EXPECT_EQ(rowsOf(page), QStringList());
        EXPECT_FALSE(table.selectionModel()->hasSelection());
        EXPECT_TRUE(page.view()->findChild<QLabel*>("emptyLabel")->isVisible());
        EXPECT_TRUE(page.registerButton->isEnabled());
        EXPECT_TRUE(page.deleteButton->isEnabled());
        dataSet().vantroStandaloneSetting = stored();
    }
}

TEST_F(KeyList, ManyRowsAreArrangedOnce)
{
    std::vector<YubiKey> serials(10000, 0);
    std::iota(serials.begin(), serials.end(), 1U);
    store({.users = {{"adam", serials}}, .adminSetting = {.adminKeys = serials}});
    for (const char* const tab : {"UserKey", "Admin"}) {
        auto& page = this->page<KeyListViewController>(tab);
        EXPECT_EQ(rowsOf(page).size(), 10000);
        switchTo("Setting");
        const QSignalSpy resets(tableOf(page).model(), &QAbstractItemModel::modelReset);
        const QSignalSpy insertions(tableOf(page).model(), &QAbstractItemModel::rowsInserted);
        switchTo(tab);
        EXPECT_EQ(rowsOf(page).size(), 10000);
        EXPECT_EQ(resets.count(), 1);
        EXPECT_EQ(insertions.count(), 0);
    }
}

} // namespace
} // namespace vantro::tests
