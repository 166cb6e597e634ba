#pragma once

#include <memory>

#include "Model/KeyModels.h"
#include "ViewController/Main/KeyListViewController.h"

namespace vantro {

/// The user key page: one row for each token of each account. Main thread.
class UserViewController : public KeyListViewController
{
    Q_OBJECT

  public:
    using Row = UserKeyModel;

    UserViewController();

    /// The controller of the table's rows; once the view is loaded.
    [[nodiscard]] NSArrayController<Row>& arrayController() const { return *allocatedKeysArrayController; }

    KeyValueArray<UserKeyModel> userKeyModels;
    std::unique_ptr<NSArrayController<UserKeyModel>> allocatedKeysArrayController;

  protected:
    std::unique_ptr<QWidget> loadView() override;
    void rebuildRows() override;
};

} // namespace vantro
