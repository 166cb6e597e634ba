#pragma once

#include <QPointer>

#include "ViewController/Main/DeletionKeyViewController.h"

namespace vantro {

class UserViewController;

/// Takes the selected tokens away from their accounts. Beyond its base: accounts left without a token go as well, and
/// forced token logon is switched off with the last token. Main thread.
class DeletionUserKeyViewController : public DeletionKeyViewController
{
    Q_OBJECT

  public:
    DeletionUserKeyViewController();

  protected:
    std::unique_ptr<QWidget> loadView() override;
    bool takeController() override;
    QStringList selectedLines() override;
    bool hasSelectedRows() override;
    bool isLastKeyDeletion() override;
    void removeFromSetting() override;
    void removeFromList() override;
    void finishRemoval() override { releaseForcedLogonWithoutKeys(logger); }

  private:
    QPointer<UserViewController> controller;
};

} // namespace vantro
