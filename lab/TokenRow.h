#pragma once

#include <QObject>
#include <QPushButton>
#include <QString>

#include "LabTokens.h"

class QGridLayout;

namespace vantro::lab {

/// One token on the table: its label, the button that plugs it in and pulls it out, and the finger.
class TokenRow : public QObject
{
    Q_OBJECT

  public:
    /// Puts its widgets into row `number` of the layout; `number` begins at 1 and is the plug's mnemonic. `token` must
    /// outlive the row.
    TokenRow(LabToken& token, int number, QGridLayout& layout, QObject* parent);

    /// Shows whether the token blinks.
    void refresh();

  private:
    void onPlug(bool isWanted);
    void showPlug();

    LabToken& token_;
    int number_;
    QPushButton* plug_;
    QPushButton* finger_;
};

} // namespace vantro::lab
