#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "Limit.h"
#include "LoggerManager/Logger.h"
#include "foundation/Outcome.h"
#include "foundation/WakeEvent.h"
#include "tokens/TokenFailure.h"
#include "usb/HidInterfaces.h"

namespace vantro::service {

class TokenLease;

/// The tokens that are plugged in, in the order in which they came. Watches them on a thread of its own. Any thread.
class TokenRegistry
{
  public:
    /// A token from its plugging in to its unplugging; the numbers grow with every plug.
    using TokenNumber = std::uint64_t;

    explicit TokenRegistry(const Logger& logger);
    ~TokenRegistry();
    TokenRegistry(const TokenRegistry&) = delete;
    TokenRegistry& operator=(const TokenRegistry&) = delete;

    /// The tokens that are there by now, the newest first. Whatever the kernel showed before the call is taken into
    /// account: somebody who has seen a token come may ask for it.
    [[nodiscard]] std::vector<TokenNumber> newestFirst();

    /// Grows whenever a token comes or goes.
    [[nodiscard]] std::uint64_t changes() const;

    /// Waits until a token has come or gone since changes() answered `seen`, no longer than the limit.
    void waitForChange(std::uint64_t seen, const Limit& limit);

    /// Takes a token for one or more exchanges: waits until its keyboard interface is there and nobody else has it.
    [[nodiscard]] Outcome<TokenLease, TokenFailure> acquire(TokenNumber number, const Limit& limit);

    /// Notes that the token did not tell its serial.
    void setHasFailed(TokenNumber number);

    /// Whether the token may be expected to answer: its keyboard interface is there, nobody else has it, and it has not
    /// failed before.
    [[nodiscard]] bool isPromising(TokenNumber number) const;

    /// The token's serial if it was read before.
    [[nodiscard]] std::optional<std::uint64_t> knownSerial(TokenNumber number) const;

  private:
    friend class TokenLease;
    struct Token;

    void watch(const std::stop_token& stop);
    void catchUp();
    void came(const HidInterface& interface);
    void went(const HidInterface& interface);
    [[nodiscard]] std::shared_ptr<Token> find(TokenNumber number) const;
    void release(Token& token);

    const Logger logger_;
    const WakeEvent stopEvent_;
    /// Held while the watcher is used, before the other one; absent on a machine without udev.
    std::mutex watcherMutex_;
    std::optional<HidInterfaceWatcher> watcher_;
    mutable std::mutex mutex_;
    std::condition_variable_any changed_;
    std::vector<std::shared_ptr<Token>> tokens_;
    TokenNumber lastNumber_ = 0;
    std::uint64_t changes_ = 0;
    std::jthread thread_;
};

/// Holds a token: nobody else exchanges anything with it meanwhile. Must not outlive the registry.
class TokenLease
{
  public:
    TokenLease(TokenLease&& other) noexcept;
    TokenLease& operator=(TokenLease&&) = delete;
    ~TokenLease();

    /// The keyboard interface's device node.
    [[nodiscard]] const std::string& deviceNode() const { return deviceNode_; }
    [[nodiscard]] std::optional<std::uint64_t> serial() const;
    void setSerial(std::uint64_t serial);

  private:
    friend class TokenRegistry;
    TokenLease(TokenRegistry& registry, std::shared_ptr<TokenRegistry::Token> token, std::string deviceNode);

    TokenRegistry* registry_;
    std::shared_ptr<TokenRegistry::Token> token_;
    std::string deviceNode_;
};

} // namespace vantro::service
