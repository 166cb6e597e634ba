#pragma once

#include "ViewController/Main/DeletionKeyViewController.h"
#include "ViewController/Main/Master/MasterKeyViewController.h"

namespace vantro {

/// Deletes master keys. Beyond its base: forced token logon is switched off with the last token. Main thread.
class DeletionMasterKeyViewController : public DeletionFromListViewController<MasterKeyViewController>
{
    Q_OBJECT

  public:
    DeletionMasterKeyViewController();

  protected:
    bool isLastKeyDeletion() override;
    void removeFromSetting() override;
    void finishRemoval() override { releaseForcedLogonWithoutKeys(baseLogger); }
};

} // namespace vantro
