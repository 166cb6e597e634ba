#include "AppDataSet.h"

#include <string>
#include <thread>
#include <utility>

#include "LoggerManager/LoggerManager.h"
#include "SystemUsers.h"

namespace vantro {
namespace {
constexpr auto initFunction = "init()";
}

AppDataSet& AppDataSet::shared()
{
    // Never destroyed: the monitor's and the connection's threads use it until the process ends.
    static auto* const dataSet = new AppDataSet;
    return *dataSet;
}

AppDataSet::AppDataSet()
    : logger(LoggerManager::logger("VantroStandalone").inFile("AppDataSet")),
      tokenPresence_(logger.onBehalfOf("AppDataSet"))
{
    std::thread([log = logger] {
        log.info("Start initializing the user list.", initFunction);
        SYSTEM_USERS();
        log.info("Finished initializing the user list.", initFunction);
    }).detach();

    loadOrCreateSetting();
    service_ = connectionService();
    tokenPresence_.monitorYubiKey();
}

void AppDataSet::loadOrCreateSetting()
{
    if (vantroStandaloneSetting.load()) {
        logger.info("Loaded setting file.", initFunction);
    } else {
        logger.info("Create setting file.", initFunction);
        vantroStandaloneSetting.write();
    }
    if (const auto error = vantroStandaloneSetting.openUpFilePermissions()) {
        logger.warning("Failed to change file permissions.", initFunction);
        logger.warning("error: " + error.message(), initFunction);
    }
}

std::unique_ptr<ServiceProxy> AppDataSet::connectionService() const
{
    constexpr auto function = "connectionService()";
    logger.info("Connection serivce.", function);
    auto connection = std::make_shared<NSXPCConnection>(label, serviceObjectPath);
    connection->resume();
    connection->setInvalidationHandler([log = logger] { log.error("Connection has been invalidated.", function); });
    connection->setInterruptionHandler([log = logger] { log.error("Connection has been interrupted.", function); });
    return std::make_unique<ServiceProxy>(std::move(connection), [log = logger](const NSError& error) {
        log.error("Connection Error : " + error.localizedDescription, function);
        log.error(error.description(), function);
    });
}

} // namespace vantro
