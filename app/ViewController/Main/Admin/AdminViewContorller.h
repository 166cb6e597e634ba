#pragma once

#include <memory>

#include "Model/AdminSettingModel.h"
#include "ViewController/Main/KeyListViewController.h"

namespace vantro {

/// The administrator key page: one row for each token that opens the tool, and the switch that makes the tool ask for
/// one. The switch can be used while there is such a token. Main thread.
class AdminViewContorller : public KeyListViewController
{
    Q_OBJECT

  public:
    using Row = AdminKeyModel;

    AdminViewContorller();

    /// The controller of the table's rows; once the view is loaded.
    [[nodiscard]] NSArrayController<Row>& arrayController() const { return *adminKeyArrayController; }

    /// Action of the check box, whose new state the model holds already; `sender` is not used.
    void onChangeToolLoginAuthButton(QObject* sender);

    AdminSettingModel adminModel;
    std::unique_ptr<NSArrayController<AdminKeyModel>> adminKeyArrayController;

  protected:
    std::unique_ptr<QWidget> loadView() override;
    void rebuildRows() override;
    void finishUpdate() override;
};

} // namespace vantro
