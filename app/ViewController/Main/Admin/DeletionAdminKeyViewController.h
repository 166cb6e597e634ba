#pragma once

#include "ViewController/Main/Admin/AdminViewContorller.h"
#include "ViewController/Main/DeletionKeyViewController.h"

namespace vantro {

/// Deletes administrator keys. Beyond its base: the tool's sign-in is switched off with the last one, so that it never
/// asks for a token that nobody can have. Main thread.
class DeletionAdminKeyViewController : public DeletionFromListViewController<AdminViewContorller>
{
    Q_OBJECT

  public:
    DeletionAdminKeyViewController();

  protected:
    bool isLastKeyDeletion() override;
    void removeFromSetting() override;
    void finishRemoval() override;
    [[nodiscard]] bool logsLoading() const override { return false; }
};

} // namespace vantro
