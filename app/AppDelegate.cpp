#include "AppDelegate.h"

#include "AppDataSet.h"
#include "ApplicationVersion.h"
#include "StartChecks.h"

namespace vantro {

AppDelegate::AppDelegate() : logger(AppDataSet::shared().logger.inFile("AppDelegate")) {}

void AppDelegate::applicationDidFinishLaunching()
{
    constexpr auto function = "applicationDidFinishLaunching(_:)";
    logger.info("Launched Application.", function);
    logger.info("AppVersion: " + APP_VERSION(), function);
    logger.info("OS: " + OS_VERSION(), function);
    quitUnlessDocumentCanBeRead();
}

bool AppDelegate::applicationShouldTerminateAfterLastWindowClosed()
{
    logger.info("Close application.", "applicationShouldTerminateAfterLastWindowClosed(_:)");
    return true;
}

} // namespace vantro
