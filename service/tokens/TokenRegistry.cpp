#include "tokens/TokenRegistry.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <set>
#include <system_error>
#include <utility>

#include "VantroStandaloneNames.h"
#include "foundation/LastError.h"

namespace vantro::service {
namespace {

constexpr std::uint16_t genericDesktopPage = 0x0001;
constexpr std::uint16_t keyboardUsage = 0x06;

bool isSupported(const HidInterface& interface)
{
    return interface.vendorId == names::tokenVendor &&
           std::ranges::count(names::tokenProducts, interface.productId) != 0;
}

bool isKeyboard(const HidInterface& interface)
{
    return interface.usagePage == genericDesktopPage && interface.usage == keyboardUsage;
}

} // namespace

struct TokenRegistry::Token
{
    TokenNumber number = 0;
    std::string usbDevicePath;
    std::set<std::string> interfaces;
    std::optional<HidInterface> keyboard;
    std::optional<std::uint64_t> serial;
    bool hasFailed = false;
    bool isBusy = false;
    bool isGone = false;
};

TokenRegistry::TokenRegistry(const Logger& logger) : logger_(logger.inFile("TokenRegistry"))
{
    try {
        watcher_.emplace([this](const HidInterface& interface) { came(interface); },
                         [this](const HidInterface& interface) { went(interface); });
        watcher_->enumerate();
    } catch (const std::system_error& error) {
        watcher_.reset();
        logger_.error(std::string("Tokens can't be watched: ") + error.what(), "init(_:)");
        return;
    }
    thread_ = std::jthread([this](const std::stop_token& stop) { watch(stop); });
}

TokenRegistry::~TokenRegistry()
{
    thread_.request_stop();
    stopEvent_.wake();
}

std::vector<TokenRegistry::TokenNumber> TokenRegistry::newestFirst()
{
    catchUp();
    const std::lock_guard lock(mutex_);
    std::vector<TokenNumber> numbers;
    std::transform(tokens_.rbegin(), tokens_.rend(), std::back_inserter(numbers),
                   [](const auto& token) { return token->number; });
    return numbers;
}

std::uint64_t TokenRegistry::changes() const
{
    const std::lock_guard lock(mutex_);
    return changes_;
}

void TokenRegistry::waitForChange(std::uint64_t seen, const Limit& limit)
{
    std::unique_lock lock(mutex_);
    changed_.wait_until(lock, limit.stop, limit.deadline, [this, seen] { return changes_ != seen; });
}

Outcome<TokenLease, TokenFailure> TokenRegistry::acquire(TokenNumber number, const Limit& limit)
{
    std::unique_lock lock(mutex_);
    const auto token = find(number);
    if (!token)
        return TokenFailure::Gone;
    changed_.wait_until(lock, limit.stop, limit.deadline,
                        [&token] { return token->isGone || (token->keyboard && !token->isBusy); });
    if (token->isGone)
        return TokenFailure::Gone;
    if (!token->keyboard)
        return TokenFailure::NoKeyboardInterface;
    if (token->isBusy)
        return TokenFailure::Busy;
    token->isBusy = true;
    return TokenLease(*this, token, token->keyboard->deviceNode);
}

std::optional<std::uint64_t> TokenRegistry::knownSerial(TokenNumber number) const
{
    const std::lock_guard lock(mutex_);
    const auto token = find(number);
    return token ? token->serial : std::nullopt;
}

void TokenRegistry::setHasFailed(TokenNumber number)
{
    const std::lock_guard lock(mutex_);
    if (const auto token = find(number))
        token->hasFailed = true;
}

bool TokenRegistry::isPromising(TokenNumber number) const
{
    const std::lock_guard lock(mutex_);
    const auto token = find(number);
    return token && token->keyboard && !token->isBusy && !token->hasFailed;
}

void TokenRegistry::watch(const std::stop_token& stop)
{
    while (!stop.stop_requested()) {
        pollfd waits[] = {{watcher_->fileDescriptor(), POLLIN, 0}, {stopEvent_.fileDescriptor(), POLLIN, 0}};
        if (::poll(waits, std::size(waits), -1) < 0 && errno != EINTR) {
            logger_.error("Tokens can't be watched: " + lastError().message(), "watch(_:)");
            return;
        }
        const std::lock_guard lock(watcherMutex_);
        watcher_->processEvents();
    }
}

void TokenRegistry::catchUp()
{
    const std::lock_guard lock(watcherMutex_);
    if (!watcher_)
        return;
    watcher_->processEvents();
    // The asker may have heard of a token before its event reached us; what the kernel shows is newer.
    watcher_->enumerate();
}

void TokenRegistry::came(const HidInterface& interface)
{
    if (!isSupported(interface))
        return;
    logger_.info("Interface " + interface.deviceNode + " came.", "came(_:)");
    const std::lock_guard lock(mutex_);
    auto known = std::find_if(tokens_.begin(), tokens_.end(), [&interface](const auto& token) {
        return token->usbDevicePath == interface.usbDevicePath;
    });
    if (known == tokens_.end()) {
        const auto token = std::make_shared<Token>();
        token->number = ++lastNumber_;
        ++changes_;
        token->usbDevicePath = interface.usbDevicePath;
        known = tokens_.insert(tokens_.end(), token);
    }
    (*known)->interfaces.insert(interface.sysPath);
    if (isKeyboard(interface))
        (*known)->keyboard = interface;
    changed_.notify_all();
}

void TokenRegistry::went(const HidInterface& interface)
{
    const std::lock_guard lock(mutex_);
    for (auto known = tokens_.begin(); known != tokens_.end(); ++known) {
        Token& token = **known;
        if (token.interfaces.erase(interface.sysPath) == 0)
            continue;
        logger_.info("Interface " + interface.deviceNode + " went.", "went(_:)");
        if (token.keyboard && token.keyboard->sysPath == interface.sysPath)
            token.keyboard.reset();
        if (token.interfaces.empty()) {
            token.isGone = true;
            ++changes_;
            tokens_.erase(known);
        }
        changed_.notify_all();
        return;
    }
}

std::shared_ptr<TokenRegistry::Token> TokenRegistry::find(TokenNumber number) const
{
    const auto found =
        std::find_if(tokens_.begin(), tokens_.end(), [number](const auto& token) { return token->number == number; });
    return found != tokens_.end() ? *found : nullptr;
}

void TokenRegistry::release(Token& token)
{
    const std::lock_guard lock(mutex_);
    token.isBusy = false;
    changed_.notify_all();
}

TokenLease::TokenLease(TokenRegistry& registry, std::shared_ptr<TokenRegistry::Token> token, std::string deviceNode)
    : registry_(&registry), token_(std::move(token)), deviceNode_(std::move(deviceNode))
{
}

TokenLease::TokenLease(TokenLease&& other) noexcept
    : registry_(other.registry_), token_(std::move(other.token_)), deviceNode_(std::move(other.deviceNode_))
{
}

TokenLease::~TokenLease()
{
    if (token_)
        registry_->release(*token_);
}

std::optional<std::uint64_t> TokenLease::serial() const
{
    const std::lock_guard lock(registry_->mutex_);
    return token_->serial;
}

void TokenLease::setSerial(std::uint64_t serial)
{
    const std::lock_guard lock(registry_->mutex_);
    token_->serial = serial;
}

} // namespace vantro::service
