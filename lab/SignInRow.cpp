#include "SignInRow.h"

#include <QGridLayout>

#include "LabAccounts.h"

namespace vantro::lab {

namespace {

QLabel* makeStatus(const QString& description)
{
    auto* const label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setAccessibleDescription(description);
    return label;
}

} // namespace

SignInRow::SignInRow(LabPrograms& programs, SignInAttempt& attempt, LabScreens& screens)
    : QGroupBox(tr("Signing in")), programs_(programs), attempt_(attempt), screens_(screens), account_(new QComboBox),
      try_(new QPushButton(tr("T&ry"))), result_(makeStatus(tr("What came of it"))),
      screensStatus_(makeStatus(tr("Screens")))
{
    for (const LabAccount& account : labAccounts()) {
        account_->addItem(QString::fromStdString(account.name));
    }
    auto* const label = new QLabel(tr("S&ign in as"));
    label->setBuddy(account_);
    result_->setText(tr("The password is taken as right; what follows it is the real login module."));

    auto* const grid = new QGridLayout(this);
    grid->setColumnStretch(3, 1);
    grid->addWidget(label, 0, 0);
    grid->addWidget(account_, 0, 1);
    grid->addWidget(try_, 0, 2);
    grid->addWidget(result_, 1, 0, 1, 4);
    grid->addWidget(screensStatus_, 2, 0, 1, 4);

    connect(try_, &QPushButton::clicked, this, &SignInRow::onTry);
    connect(&attempt_, &SignInAttempt::said, this,
            [this](const QString& text) { result_->setText(attempt_.account() + QStringLiteral(": ") + text); });
    connect(&attempt_, &SignInAttempt::denied, this, &SignInRow::onEnded);
    connect(&attempt_, &SignInAttempt::accepted, this, [this](const QString& result) {
        screens_.unlock(attempt_.account());
        onEnded(result);
    });
    const auto showScreens = [this] { screensStatus_->setText(screens_.statusText()); };
    connect(&screens_, &LabScreens::changed, this, showScreens);
    showScreens();
}

void SignInRow::onTry()
{
    if (attempt_.isUnderWay()) {
        attempt_.giveUp();
        return;
    }
    result_->setText(tr("%1: signing in …").arg(account_->currentText()));
    try_->setText(tr("Give &Up"));
    account_->setEnabled(false);
    attempt_.start(account_->currentText(), programs_.environment());
}

void SignInRow::onEnded(const QString& result)
{
    result_->setText(result);
    try_->setText(tr("T&ry"));
    account_->setEnabled(true);
}

} // namespace vantro::lab
