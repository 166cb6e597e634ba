#pragma once

#include <QPointer>

#include "ViewController/Main/DeletionKeyViewController.h"

namespace vantro {

class MasterKeyViewController;

/// Deletes master keys. Beyond its base: forced token logon is switched off with the last token. Main thread.
class DeletionMasterKeyViewController : public DeletionKeyViewController
{
    Q_OBJECT

  public:
    DeletionMasterKeyViewController();

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
    QPointer<MasterKeyViewController> controller;
};

} // namespace vantro
