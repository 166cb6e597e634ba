#pragma once

#include "ViewController/Main/DeletionKeyViewController.h"
#include "ViewController/Main/User/UserViewController.h"

namespace vantro {

/// Takes the selected tokens away from their accounts. Beyond its base: accounts left without a token go as well, and
/// forced token logon is switched off with the last token. Main thread.
class DeletionUserKeyViewController : public DeletionFromListViewController<UserViewController>
{
    Q_OBJECT

  public:
    DeletionUserKeyViewController();

  protected:
    [[nodiscard]] QString lineOf(const UserKeyModel& row) const override;
    bool isLastKeyDeletion() override;
    void removeFromSetting() override;
    void finishRemoval() override { releaseForcedLogonWithoutKeys(baseLogger); }
};

} // namespace vantro
