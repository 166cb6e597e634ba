#pragma once

#include <chrono>
#include <cstdint>
#include <list>
#include <optional>
#include <span>
#include <vector>

#include "foundation/FileDescriptor.h"
#include "usbip/Message.h"
#include "usbip/UsbToken.h"

namespace vantro::lab::usbip {

/// A token while it is plugged in: serves what the host controller asks over the stream. One thread.
class PluggedToken
{
  public:
    using Clock = std::chrono::steady_clock;

    /// How the token behaves beyond what its profile says.
    struct Mood
    {
        /// It answers nothing at all.
        bool isHung = false;
        /// How long each transfer of a feature report takes.
        std::chrono::milliseconds transferTime{0};
    };

    /// Plugs the token in; throws what plugIntoHost() throws. Token and mood must outlive it.
    PluggedToken(UsbToken& token, const Mood& mood);

    /// To be polled for reading, and then handed to serve().
    [[nodiscard]] int descriptor() const { return stream_.get(); }

    /// Takes what has come and answers what can be answered; false once the host has pulled the plug.
    [[nodiscard]] bool serve();

    /// Sends the answers whose time has come.
    void sendDue(Clock::time_point now);

    /// When the next answer is due.
    [[nodiscard]] std::optional<Clock::time_point> nextDue() const;

  private:
    /// A transfer that is under way.
    struct Transfer
    {
        Request request;
        std::vector<std::uint8_t> data;
        /// Absent: nothing ends it but being forgotten.
        std::optional<Clock::time_point> due;
    };

    void take(const Request& request, std::span<const std::uint8_t> data);
    void forget(const Request& request);
    void end(const Transfer& transfer);
    void send(const std::vector<std::uint8_t>& message) const;

    UsbToken& token_;
    const Mood& mood_;
    FileDescriptor stream_;
    /// What has come and makes no whole message yet.
    std::vector<std::uint8_t> received_;
    std::list<Transfer> transfers_;
};

} // namespace vantro::lab::usbip
