#pragma once

#include <memory>

#include "LoggerManager/Logger.h"
#include "appkit/NSViewController.h"

namespace vantro {

/// Says that several tokens are plugged in. Nobody can close it; it closes itself when the last token has gone, and
/// then tells the main window that the next one may be shown. Main thread.
class MultipleConnectionsAlertViewController : public NSViewController
{
    Q_OBJECT

  public:
    MultipleConnectionsAlertViewController();

    void viewDidLoad() override;
    void viewWillAppear() override;
    void cancelOperation() override {}

  protected:
    std::unique_ptr<QWidget> loadView() override;

  private:
    void closeNow();

    const Logger logger;
};

} // namespace vantro
