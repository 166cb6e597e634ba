#include "TokenPresence.h"

#include <any>
#include <cstddef>
#include <string>
#include <thread>
#include <utility>

#include "ServiceRequest.h"
#include "ServiceRequests.h"
#include "VantroStandaloneNames.h"

namespace vantro {
namespace {

constexpr std::size_t tokenReportSize = 64;

const std::vector<HIDMonitorData>& deviceFilter()
{
    static const std::vector<HIDMonitorData> filter = [] {
        std::vector<HIDMonitorData> tokens;
        tokens.reserve(names::tokenProducts.size());
        for (const auto product : names::tokenProducts)
            tokens.push_back({names::tokenVendor, product});
        return tokens;
    }();
    return filter;
}

} // namespace

TokenPresence::TokenPresence(Logger logger) : logger_(std::move(logger)) {}

void TokenPresence::monitorYubiKey()
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
            logger_.error("Tokens can't be watched: " + error.message() + ".", "monitorYubiKey()");
    }).detach();
}

void TokenPresence::onDeviceConnected(const Notification& notification)
{
    constexpr auto function = "onDeviceConnected(notification:)";
    const auto* const device = std::any_cast<HIDDevice>(&notification.object);
    if (device == nullptr || device->reportSize != tokenReportSize)
        return;

    // Through shared(), which is not there before the start sequence has ended.
    const ServiceRequest<std::uint64_t> request([log = logger_](ServiceProxy& service, const auto& reply) {
        service.getSerialWithReply([log, reply](std::uint64_t number) {
            log.info("Connected YubiKey [Serial = " + std::to_string(number) + "].", function);
            reply(number);
        });
    });
    // A request that fails ends the wait, and like a serial of 0: the token can't be used, but it is there.
    const std::optional<std::uint64_t> reply = request.waitForReplyOrFailure();
    setCount(count_ + 1);

    if (reply.value_or(0) == 0) {
        logger_.warning(std::string("Serial is nil or 0. [") + (reply ? "Optional(0)" : "nil") + "]", function);
        obstacle_.set(TokenObstacle::Kind::SerialNotRead, request.failure(serviceReplyLimit));
        return;
    }
    serial_ = *reply;
    obstacle_.set(TokenObstacle::Kind::None);
    NotificationCenter::defaultCenter().post(ConnectedYubiKey);
    logger_.info("YubiKey connection notification", function);
    if (count_ >= 2) {
        NotificationCenter::defaultCenter().post(MultipleConnectedYubiKey);
        logger_.info("Multiple connection notification for YubiKey.", function);
    }
}

void TokenPresence::onDeviceDisconnected()
{
    constexpr auto function = "onDeviceDisconnected()";
    ++onDeviceDisconnectedCount_;
    // A token has two interfaces and so goes with two notifications.
    if (onDeviceDisconnectedCount_ % 2 != 0)
        return;

    const auto lastSerial = serial();
    if (count_ >= 1 && lastSerial)
        logger_.info("Disconnected YubiKey [Serial = " + std::to_string(*lastSerial) + "].", function);
    else
        logger_.info("Disconnected YubiKey.", function);
    serial_ = 0;
    setCount(count_ - 1);
    if (count_ <= 0)
        obstacle_.set(TokenObstacle::Kind::None);
    else if (lastSerial)
        obstacle_.set(TokenObstacle::Kind::AnotherPulledOut);
    NotificationCenter::defaultCenter().post(DisconnectedYubiKey);
}

std::optional<std::uint64_t> TokenPresence::serial() const
{
    const std::uint64_t number = serial_;
    return number == 0 ? std::nullopt : std::optional(number);
}

QString TokenPresence::obstacleText() const
{
    return serial() || count() <= 0 ? QString() : obstacle_.text();
}

void TokenPresence::setCount(std::int64_t count)
{
    count_ = count;
    logger_.info("Connected YubiKey count: " + std::to_string(count), "connectedYubiKeyCount");
}

} // namespace vantro
