#include "TokenRow.h"

#include <QGridLayout>
#include <QLabel>

namespace vantro::lab {

TokenRow::TokenRow(LabToken& token, int number, QGridLayout& layout, QObject* parent)
    : QObject(parent), token_(token), number_(number), plug_(new QPushButton), finger_(new QPushButton)
{
    const QString serial = QString::number(token_.token->profile().otp.serial);
    auto* const label = new QLabel(tr("%1. Serial %2").arg(number).arg(serial));
    auto* const description = new QLabel(QString::fromStdString(token_.description));
    plug_->setCheckable(true);
    finger_->setText(tr("Touch"));
    finger_->setAccessibleName(tr("Touch token %1").arg(number));
    finger_->setEnabled(false);
    layout.addWidget(label, number, 0);
    layout.addWidget(description, number, 1);
    layout.addWidget(plug_, number, 2);
    layout.addWidget(finger_, number, 3);
    connect(plug_, &QPushButton::toggled, this, &TokenRow::onPlug);
    connect(finger_, &QPushButton::clicked, this, [this] { token_.token->touch(); });
    showPlug();
}

void TokenRow::onPlug(bool isWanted)
{
    if (isWanted) {
        token_.token->plugIn();
    } else {
        token_.token->unplug();
    }
    showPlug();
    refresh();
}

void TokenRow::showPlug()
{
    const bool isIn = plug_->isChecked();
    plug_->setText(isIn ? tr("Pull &%1 Out").arg(number_) : tr("Plug &%1 In").arg(number_));
    plug_->setAccessibleName(isIn ? tr("Pull token %1 out").arg(number_) : tr("Plug token %1 in").arg(number_));
}

void TokenRow::refresh()
{
    const bool isBlinking = token_.token->isWaitingForTouch();
    if (finger_->isEnabled() == isBlinking) {
        return;
    }
    finger_->setEnabled(isBlinking);
    finger_->setText(isBlinking ? tr("&Touch") : tr("Touch"));
}

} // namespace vantro::lab
