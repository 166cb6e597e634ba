#include "ViewController/Alert/MultipleConnectionsAlertViewController.h"

#include <string>

#include "AppDataSet.h"
#include "ApplicationVersion.h"
#include "ViewController/Main/TabViewController.h"
#include "ui_MultipleConnectionsAlertView.h"

namespace vantro {
namespace {
constexpr auto closeFunction = "closeWindow()";
}

MultipleConnectionsAlertViewController::MultipleConnectionsAlertViewController()
    : logger(AppDataSet::shared().logger.inFile("ViewController/Alert/MultipleConnectionsAlertViewController"))
{
}

std::unique_ptr<QWidget> MultipleConnectionsAlertViewController::loadView()
{
    auto view = std::make_unique<QWidget>();
    Ui::MultipleConnectionsAlertView outlets;
    outlets.setupUi(view.get());
    return view;
}

void MultipleConnectionsAlertViewController::viewDidLoad()
{
    constexpr auto function = "viewDidLoad()";
    logger.info("Start viewDidLoad.", function);
    const auto close = onMainQueue([this] { closeNow(); });
    observe(DisconnectedYubiKey, [log = logger, close](const Notification&) {
        const std::int64_t count = AppDataSet::shared().connectedYubiKeyCount();
        if (count != 0) {
            log.info("YubiKey is still plugged in. [connedted: " + std::to_string(count) + "]", closeFunction);
            return;
        }
        DispatchQueue::main().async(close);
    });
    // When the last token has gone before anybody observed, nothing else would ever close the alert.
    if (AppDataSet::shared().connectedYubiKeyCount() == 0)
        DispatchQueue::main().async(close);
    logger.info("Finished viewDidLoad.", function);
}

void MultipleConnectionsAlertViewController::viewWillAppear()
{
    constexpr auto function = "viewWillAppear()";
    if (window() == nullptr)
        return;
    logger.info("Start viewWillAppear.", function);
    window()->setWindowTitle(windowTitleWithVersion());
    setWindowButtons(WindowButtons::None);
    logger.info("Finished viewWillAppear.", function);
}

void MultipleConnectionsAlertViewController::closeNow()
{
    logger.info("Close window.", closeFunction);
    auto* const mainWindow = qobject_cast<TabViewController*>(presentingViewController());
    if (mainWindow != nullptr)
        mainWindow->isDisplayingMultipleConnectionsAlert = false;
    else
        logger.info("Failed to get presenting view controller.", closeFunction);
    dismissController();
    // Those that came since the last one went found the alert still there, and brought no other.
    if (mainWindow != nullptr && AppDataSet::shared().connectedYubiKeyCount() >= 2)
        mainWindow->onMultipleConnectedYubiKey();
}

} // namespace vantro
