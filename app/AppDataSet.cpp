#include "AppDataSet.h"

#include <any>
#include <string>
#include <system_error>
#include <utility>

#include "LoggerManager/LoggerManager.h"
#include "ServiceRequest.h"
#include "ServiceRequests.h"
#include "SystemUsers.h"
#include "VantroStandaloneNames.h"
#include "foundation/FileManager.h"
#include "foundation/Identity.h"

namespace vantro {
namespace {

constexpr std::size_t tokenReportSize = 64;
constexpr mode_t openDocumentMode = 0666;
constexpr auto initFunction = "init()";

const std::vector<HIDMonitorData>& deviceFilter()
{
    static const std::vector<HIDMonitorData> filter = [] {
        std::vector<HIDMonitorData> tokens;
        for (const auto product : names::tokenProducts)
            tokens.push_back({names::tokenVendor, product});
        return tokens;
    }();
    return filter;
}

} // namespace

AppDataSet& AppDataSet::shared()
{
    // Never destroyed: the monitor's and the connection's threads use it until the process ends.
    static auto* const dataSet = new AppDataSet;
    return *dataSet;
}

AppDataSet::AppDataSet() : logger(LoggerManager::logger("VantroStandalone").inFile("AppDataSet"))
{
    std::thread([log = logger] {
        log.info("Start initializing the user list.", initFunction);
        SYSTEM_USERS();
        log.info("Finished initializing the user list.", initFunction);
    }).detach();

    loadOrCreateSetting();
    openUpFilePermissions();
    service_ = connectionService();
    monitorYubiKey();
}

void AppDataSet::loadOrCreateSetting()
{
    if (const auto bytes = readXML(VantroStandaloneSetting::url())) {
        vantroStandaloneSetting = VantroStandaloneSetting(XML::parse(*bytes));
        logger.info("Loaded setting file.", initFunction);
        return;
    }
    logger.info("Create setting file.", initFunction);
    vantroStandaloneSetting = VantroStandaloneSetting();
    vantroStandaloneSetting.write();
}

void AppDataSet::openUpFilePermissions() const
{
    std::error_code error;
    if (const auto document = FileManagerItem::open(VantroStandaloneSetting::url(), error)) {
        const std::string userName = NSUserName();
        const auto owner = document->ownerAccountName();
        if (!owner || (*owner != userName && userName != "root"))
            return;
        error = document->setPosixPermissions(openDocumentMode);
    }
    if (error) {
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

void AppDataSet::monitorYubiKey()
{
    monitor_ = std::make_unique<HIDDeviceMonitor>(deviceFilter(), tokenReportSize);
    // Observing comes before the thread, which reports at once what is plugged in already.
    auto& center = NotificationCenter::defaultCenter();
    observations_.push_back(center.addObserver(
        HIDDeviceConnected, [this](const Notification& notification) { onDeviceConnected(notification); }));
    observations_.push_back(
        center.addObserver(HIDDeviceDisconnected, [this](const Notification&) { onDeviceDisconnected(); }));
    std::thread([this] {
        if (const auto error = monitor_->start())
            logger.error("Tokens can't be watched: " + error.message() + ".", "monitorYubiKey()");
    }).detach();
}

void AppDataSet::onDeviceConnected(const Notification& notification)
{
    constexpr auto function = "onDeviceConnected(notification:)";
    const auto* const device = std::any_cast<HIDDevice>(&notification.object);
    if (device == nullptr || device->reportSize != tokenReportSize)
        return;

    // Through shared(), which is not there before the start sequence has ended.
    const ServiceRequest<std::uint64_t> request([log = logger](ServiceProxy& service, auto reply) {
        service.getSerialWithReply([log, reply](std::uint64_t serial) {
            log.info("Connected YubiKey [Serial = " + std::to_string(serial) + "].", function);
            reply(serial);
        });
    });
    // A request that fails ends the wait, and like a serial of 0: the token can't be used, but it is there.
    const std::optional<std::uint64_t> serial = request.waitForReplyOrFailure();
    setConnectedYubiKeyCount(connectedYubiKeyCount_ + 1);

    if (serial.value_or(0) == 0) {
        logger.warning(std::string("Serial is nil or 0. [") + (serial ? "Optional(0)" : "nil") + "]", function);
        tokenObstacle.set(TokenObstacle::Kind::SerialNotRead, request.failure(serviceReplyLimit));
        return;
    }
    connectedYubiKeySerial_ = *serial;
    tokenObstacle.set(TokenObstacle::Kind::None);
    NotificationCenter::defaultCenter().post(ConnectedYubiKey);
    logger.info("YubiKey connection notification", function);
    if (connectedYubiKeyCount_ >= 2) {
        NotificationCenter::defaultCenter().post(MultipleConnectedYubiKey);
        logger.info("Multiple connection notification for YubiKey.", function);
    }
}

void AppDataSet::onDeviceDisconnected()
{
    constexpr auto function = "onDeviceDisconnected()";
    ++onDeviceDisconnectedCount_;
    // A token has two interfaces and so goes with two notifications.
    if (onDeviceDisconnectedCount_ % 2 != 0)
        return;

    const auto serial = connectedYubiKeySerial();
    if (connectedYubiKeyCount_ >= 1 && serial)
        logger.info("Disconnected YubiKey [Serial = " + std::to_string(*serial) + "].", function);
    else
        logger.info("Disconnected YubiKey.", function);
    connectedYubiKeySerial_ = 0;
    setConnectedYubiKeyCount(connectedYubiKeyCount_ - 1);
    if (connectedYubiKeyCount_ <= 0)
        tokenObstacle.set(TokenObstacle::Kind::None);
    else if (serial)
        tokenObstacle.set(TokenObstacle::Kind::AnotherPulledOut);
    NotificationCenter::defaultCenter().post(DisconnectedYubiKey);
}

std::optional<std::uint64_t> AppDataSet::connectedYubiKeySerial() const
{
    const std::uint64_t serial = connectedYubiKeySerial_;
    return serial == 0 ? std::nullopt : std::optional(serial);
}

void AppDataSet::setConnectedYubiKeyCount(std::int64_t count)
{
    connectedYubiKeyCount_ = count;
    logger.info("Connected YubiKey count: " + std::to_string(count), "connectedYubiKeyCount");
}

} // namespace vantro
