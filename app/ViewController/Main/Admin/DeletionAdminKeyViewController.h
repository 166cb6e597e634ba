#pragma once

#include <QPointer>

#include "ViewController/Main/DeletionKeyViewController.h"

namespace vantro {

class AdminViewContorller;

/// Deletes administrator keys. Beyond its base: the tool's sign-in is switched off with the last one, so that it never
/// asks for a token that nobody can have. Main thread.
class DeletionAdminKeyViewController : public DeletionKeyViewController
{
    Q_OBJECT

  public:
    DeletionAdminKeyViewController();

  protected:
    std::unique_ptr<QWidget> loadView() override;
    bool takeController() override;
    QStringList selectedLines() override;
    bool hasSelectedRows() override;
    bool isLastKeyDeletion() override;
    void removeFromSetting() override;
    void removeFromList() override;
    void finishRemoval() override;
    [[nodiscard]] bool logsLoading() const override { return false; }

  private:
    QPointer<AdminViewContorller> controller;
};

} // namespace vantro
