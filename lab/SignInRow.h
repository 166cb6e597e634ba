#pragma once

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

#include "LabPrograms.h"
#include "LabScreens.h"
#include "SignInAttempt.h"

namespace vantro::lab {

/// Where somebody tries what the tool's settings bring about: who signs in, what they are told, whether they get in,
/// and whose screen is locked.
class SignInRow : public QGroupBox
{
    Q_OBJECT

  public:
    /// All three must outlive the row.
    SignInRow(LabPrograms& programs, SignInAttempt& attempt, LabScreens& screens);

  private:
    void onTry();
    void onEnded(const QString& result);

    LabPrograms& programs_;
    SignInAttempt& attempt_;
    LabScreens& screens_;
    QComboBox* account_;
    QPushButton* try_;
    QLabel* result_;
    QLabel* screensStatus_;
};

} // namespace vantro::lab
