#pragma once

#include <vector>

#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QTimer>

#include "LabPrograms.h"
#include "LabScreens.h"
#include "LabState.h"
#include "LabTokens.h"
#include "SignInAttempt.h"
#include "TokenRow.h"

namespace vantro::lab {

/// The lab's window: the tokens on the table, somebody who signs in, and what the programs are doing. Closing it ends
/// the lab.
class LabWindow : public QMainWindow
{
    Q_OBJECT

  public:
    /// All must outlive the window.
    LabWindow(const LabState& state, LabPrograms& programs, SignInAttempt& attempt, LabScreens& screens,
              std::vector<LabToken>& tokens);

  private:
    void showPrograms();

    LabPrograms& programs_;
    std::vector<TokenRow*> rows_;
    QLabel* status_;
    QPushButton* startAgain_;
    QTimer blinking_;
};

} // namespace vantro::lab
