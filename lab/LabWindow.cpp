#include "LabWindow.h"

#include <chrono>

#include <QGridLayout>
#include <QGroupBox>
#include <QVBoxLayout>

#include "LabAccounts.h"
#include "SignInRow.h"

namespace vantro::lab {

namespace {

/// How often the window looks whether a token blinks.
constexpr std::chrono::milliseconds blinkInterval{100};

QLabel* makeText()
{
    auto* const label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    label->setWordWrap(true);
    return label;
}

} // namespace

LabWindow::LabWindow(const LabState& state, LabPrograms& programs, SignInAttempt& attempt, LabScreens& screens,
                     std::vector<LabToken>& tokens)
    : programs_(programs), status_(makeText()), startAgain_(new QPushButton(tr("&Start the tool again")))
{
    setWindowTitle(tr("Token Lab"));
    setCentralWidget(new QWidget);
    auto* const layout = new QVBoxLayout(centralWidget());

    auto* const table = new QGroupBox(tr("Virtual tokens"));
    auto* const grid = new QGridLayout(table);
    grid->setColumnStretch(1, 1);
    int number = 0;
    for (LabToken& token : tokens) {
        rows_.push_back(new TokenRow(token, ++number, *grid, this));
    }
    layout->addWidget(table);
    layout->addWidget(new SignInRow(programs, attempt, screens));

    QStringList people;
    for (const LabAccount& account : labAccounts()) {
        people << QStringLiteral("%1 (%2)").arg(QString::fromStdString(account.name),
                                                QString::fromStdString(account.fullName));
    }
    auto* const explanation = makeText();
    explanation->setText(tr("The tool and the service are the real ones; the tokens are emulated. "
                            "The accounts %1 exist only in this lab.")
                             .arg(people.join(tr(" and "))));
    layout->addWidget(explanation);

    layout->addWidget(status_);
    auto* const paths = makeText();
    paths->setText(tr("Settings document: %1\nThe tool's log: %2\nThe service's log: %3")
                       .arg(QString::fromStdString(state.document().string()),
                            QString::fromStdString(state.toolLog().string()),
                            QString::fromStdString(state.serviceLog().string())));
    layout->addWidget(paths);
    layout->addWidget(startAgain_, 0, Qt::AlignRight);

    connect(startAgain_, &QPushButton::clicked, &programs_, &LabPrograms::startTool);
    connect(&programs_, &LabPrograms::changed, this, &LabWindow::showPrograms);
    connect(&blinking_, &QTimer::timeout, this, [this] {
        for (TokenRow* const row : rows_) {
            row->refresh();
        }
    });
    blinking_.start(blinkInterval);
    showPrograms();
}

void LabWindow::showPrograms()
{
    status_->setText(programs_.statusText());
    startAgain_->setEnabled(!programs_.isToolRunning());
}

} // namespace vantro::lab
