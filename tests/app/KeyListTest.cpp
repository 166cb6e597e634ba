// The three key lists.

#include <numeric>

#include <QLabel>
#include <QSignalSpy>
#include <QTest>

#include "app/ScreenFixture.h"

namespace vantro::tests {
namespace {

using KeyList = ScreenFixture;

INSTANTIATE_TEST_SUITE_P(Of, KeyList, allScreens(), nameOf);

TEST_P(KeyList, ShowsTheDocumentInItsOwnOrderAndNothingSelected)
{
    const std::vector<YubiKey> keys = {9, 18446744073709551615U, 3};
    prefix.store(screen().with(keys));
    QStringList expected;
    for (const YubiKey& key : keys)
        expected += (screen().name == "User" ? "tester " : "") + QString::number(key.serial);
    EXPECT_EQ(rows(), expected);
    auto* const emptyLabel = list().view()->findChild<QLabel*>("emptyLabel");
    EXPECT_FALSE(emptyLabel->isVisible());

    // A click beyond the rows takes the selection from the table and its controller alike.
    auto* const viewport = table().viewport();
    const auto click = [&](QPoint where) {
        const auto before = log(screen().list).size();
        QTest::mouseClick(viewport, Qt::LeftButton, {}, where);
        EXPECT_TRUE(spinUntil([&] { return log(screen().list).size() > before; }));
    };
    table().selectAll();
    click(viewport->rect().bottomLeft() + QPoint(5, -2));
    EXPECT_FALSE(hasSelection());
    click(table().visualRect(table().model()->index(0, 0)).center());
    EXPECT_TRUE(hasSelection());

    // Another appearance shows the document as it is by then.
    switchTo("Setting");
    dataSet().vantroStandaloneSetting = VantroStandaloneSetting();
    EXPECT_EQ(rows(), QStringList());
    EXPECT_FALSE(hasSelection());
    EXPECT_TRUE(emptyLabel->isVisible());
    EXPECT_TRUE(list().registerButton->isEnabled());
    EXPECT_TRUE(list().deleteButton->isEnabled());
    expectRecorded("list-" + screen().name, screen().list);
}

TEST_P(KeyList, ManyRowsAreArrangedOnce)
{
    std::vector<YubiKey> keys(10000, 0);
    std::iota(keys.begin(), keys.end(), 1U);
    prefix.store(screen().with(keys));
    EXPECT_EQ(rows().size(), 10000);
    auto* const model = table().model();
    switchTo("Setting");
    const QSignalSpy resets(model, &QAbstractItemModel::modelReset);
    const QSignalSpy insertions(model, &QAbstractItemModel::rowsInserted);
    EXPECT_EQ(rows().size(), 10000);
    EXPECT_EQ(resets.count(), 1);
    EXPECT_EQ(insertions.count(), 0);
}

} // namespace
} // namespace vantro::tests
