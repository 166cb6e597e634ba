#pragma once

#include <memory>

#include "Model/KeyModels.h"
#include "ViewController/Main/KeyListViewController.h"

namespace vantro {

/// The master key page: one row for each token that opens every account. Main thread.
class MasterKeyViewController : public KeyListViewController
{
    Q_OBJECT

  public:
    using Row = MasterKeyModel;

    MasterKeyViewController();

    /// The controller of the table's rows; once the view is loaded.
    [[nodiscard]] NSArrayController<Row>& arrayController() const { return *masterKeyArrayController; }

    KeyValueArray<MasterKeyModel> masterKeyModels;
    std::unique_ptr<NSArrayController<MasterKeyModel>> masterKeyArrayController;

  protected:
    std::unique_ptr<QWidget> loadView() override;
    void rebuildRows() override;
};

} // namespace vantro
