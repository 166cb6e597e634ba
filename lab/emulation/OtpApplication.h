#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "usb/OtpFrame.h"

namespace vantro::lab {

/// The secret of a slot for HMAC-SHA1 challenge-response.
using SlotKey = std::array<std::uint8_t, 20>;

/// One of the two slots of a token.
struct SlotProfile
{
    /// Absent: the slot is not programmed and never answers.
    std::optional<SlotKey> key;
    /// The slot answers only after a touch.
    bool needsTouch = false;
    /// All 64 bytes are the challenge; otherwise trailing bytes that equal the last one are dropped.
    bool isFixedLength = false;
};

/// What a token's OTP application is like.
struct OtpProfile
{
    std::uint32_t serial = 0;
    std::array<SlotProfile, 2> slots;
    /// Between the last chunk of a command and its answer, or between the touch and the answer.
    std::chrono::milliseconds replyDelay{0};
};

/// The OTP application of a token as it is seen through 8-byte feature reports: takes command frames, chunk by chunk,
/// and hands out the answer, report by report. Knows nothing of devices; one thread at a time.
class OtpApplication
{
  public:
    using Report = otp::Report;
    using Clock = std::chrono::steady_clock;

    explicit OtpApplication(const OtpProfile& profile) : profile_(profile) {}

    /// One feature report from the host.
    void write(const Report& report, Clock::time_point now);

    /// One feature report to the host: the next part of the answer, or the status.
    [[nodiscard]] Report read(Clock::time_point now);

    /// Somebody touches the token: releases the answer that waits for it, if one does.
    void touch(Clock::time_point now);

    [[nodiscard]] bool isWaitingForTouch(Clock::time_point now) const;

  private:
    void reset();
    void execute(Clock::time_point now);
    void answer(std::vector<std::uint8_t> payload, bool needsTouch, Clock::time_point now);
    [[nodiscard]] std::vector<std::uint8_t> respond(const SlotProfile& slot,
                                                    std::span<const std::uint8_t> challenge) const;
    [[nodiscard]] Report status() const;

    OtpProfile profile_;
    std::array<std::uint8_t, otp::frameSize> frame_{};
    /// The answer with its checksum; empty when there is none.
    std::vector<std::uint8_t> answer_;
    std::size_t nextReport_ = 0;
    Clock::time_point readyAt_;
    /// Set while the answer waits for a touch: when the token stops waiting.
    std::optional<Clock::time_point> touchLimit_;
};

} // namespace vantro::lab
