// The floor of a start: the tool's main window as the page of the user keys shows it, made of bare Qt widgets with the
// same texts, and nothing behind it.

#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

QLabel* paragraph(const QString& text)
{
    auto* const label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QWidget* userKeysPage()
{
    auto* const page = new QWidget;
    auto* const column = new QVBoxLayout(page);
    column->addWidget(paragraph(QStringLiteral("Tokens that open one account each:")));
    auto* const table = new QTableWidget(0, 2);
    table->setHorizontalHeaderLabels({QStringLiteral("Account"), QStringLiteral("Token serial")});
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->verticalHeader()->hide();
    table->setAlternatingRowColors(true);
    table->setShowGrid(false);
    column->addWidget(table);
    column->addWidget(
        paragraph(QStringLiteral("No token is assigned to an account yet. Plug in a YubiKey and choose Register…")));
    auto* const row = new QHBoxLayout;
    column->addLayout(row);
    row->addStretch();
    row->addWidget(new QPushButton(QStringLiteral("&Register…")));
    row->addWidget(new QPushButton(QStringLiteral("&Delete…")));
    return page;
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QMainWindow window;
    window.setWindowTitle(QStringLiteral("Bare window"));
    auto* const tabs = new QTabWidget;
    tabs->setDocumentMode(true);
    tabs->addTab(new QWidget, QStringLiteral("Settings"));
    const int first = tabs->addTab(userKeysPage(), QStringLiteral("User Keys"));
    tabs->addTab(new QWidget, QStringLiteral("Master Keys"));
    tabs->addTab(new QWidget, QStringLiteral("Admin Keys"));
    tabs->setCurrentIndex(first);
    window.setCentralWidget(tabs);
    window.resize(420, 340);
    window.show();
    return QApplication::exec();
}
