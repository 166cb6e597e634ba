#include "emulation/OtpApplication.h"

#include <algorithm>
#include <cstring>

#include <openssl/evp.h>
#include <openssl/hmac.h>

namespace vantro::lab {

namespace {

constexpr std::size_t commandOffset = otp::payloadSize;
constexpr std::size_t checksumOffset = commandOffset + 1;

/// A token blinks for this long before it gives up.
constexpr std::chrono::seconds touchPatience{15};

} // namespace

void OtpApplication::reset()
{
    answer_.clear();
    nextReport_ = 0;
    touchLimit_.reset();
}

void OtpApplication::write(const Report& report, Clock::time_point now)
{
    const std::uint8_t flags = report.back();
    if (flags == otp::flag::reset) {
        reset();
        return;
    }
    const std::size_t sequence = flags & otp::flag::sequence;
    if ((flags & otp::flag::write) == 0 || sequence >= otp::chunkCount) {
        return;
    }
    if (sequence == 0) {
        reset();
        frame_.fill(0);
    }
    std::copy_n(report.begin(), otp::chunkSize,
                frame_.begin() + static_cast<std::ptrdiff_t>(sequence * otp::chunkSize));
    if (sequence == otp::chunkCount - 1) {
        execute(now);
    }
}

void OtpApplication::execute(Clock::time_point now)
{
    const std::span<const std::uint8_t> payload(frame_.data(), otp::payloadSize);
    const unsigned int sum = frame_[checksumOffset] | static_cast<unsigned int>(frame_[checksumOffset + 1]) << 8U;
    if (sum != otp::checksum(payload)) {
        return;
    }
    const std::uint8_t command = frame_[commandOffset];
    if (command == otp::command::serial) {
        const std::uint32_t serial = profile_.serial;
        answer({static_cast<std::uint8_t>(serial >> 24U), static_cast<std::uint8_t>(serial >> 16U),
                static_cast<std::uint8_t>(serial >> 8U), static_cast<std::uint8_t>(serial)},
               false, now);
    } else if (command == otp::command::slotOne || command == otp::command::slotTwo) {
        const SlotProfile& slot = profile_.slots.at(command == otp::command::slotOne ? 0 : 1);
        if (slot.key) {
            answer(respond(slot, payload), slot.needsTouch, now);
        }
    }
}

void OtpApplication::answer(std::vector<std::uint8_t> payload, bool needsTouch, Clock::time_point now)
{
    const auto sum = static_cast<std::uint16_t>(~otp::checksum(payload));
    payload.push_back(static_cast<std::uint8_t>(sum & 0xffU));
    payload.push_back(static_cast<std::uint8_t>(sum >> 8U));
    answer_ = std::move(payload);
    nextReport_ = 0;
    readyAt_ = now + profile_.replyDelay;
    if (needsTouch) {
        touchLimit_ = now + touchPatience;
    }
}

std::vector<std::uint8_t> OtpApplication::respond(const SlotProfile& slot,
                                                  std::span<const std::uint8_t> challenge) const
{
    if (!slot.isFixedLength) {
        const std::uint8_t padding = challenge.back();
        while (!challenge.empty() && challenge.back() == padding) {
            challenge = challenge.first(challenge.size() - 1);
        }
    }
    std::vector<std::uint8_t> response(EVP_MAX_MD_SIZE);
    unsigned int size = 0;
    HMAC(EVP_sha1(), slot.key->data(), static_cast<int>(slot.key->size()), challenge.data(), challenge.size(),
         response.data(), &size);
    response.resize(size);
    return response;
}

OtpApplication::Report OtpApplication::status() const
{
    Report report{};
    const std::array<std::uint8_t, 3> firmware{5, 4, 3};
    std::copy(firmware.begin(), firmware.end(), report.begin() + 1);
    report[4] = std::any_of(profile_.slots.begin(), profile_.slots.end(),
                            [](const SlotProfile& slot) { return slot.key.has_value(); });
    unsigned int level = 0;
    for (std::size_t slot = 0; slot < profile_.slots.size(); ++slot) {
        const SlotProfile& profile = profile_.slots.at(slot);
        level |= profile.key ? 0x01U << slot : 0U;
        level |= profile.key && profile.needsTouch ? 0x04U << slot : 0U;
    }
    report[5] = static_cast<std::uint8_t>(level);
    return report;
}

OtpApplication::Report OtpApplication::read(Clock::time_point now)
{
    if (touchLimit_ && now >= *touchLimit_) {
        reset();
    }
    if (touchLimit_) {
        const auto left = std::chrono::ceil<std::chrono::seconds>(*touchLimit_ - now).count();
        Report report = status();
        report.back() =
            static_cast<std::uint8_t>(otp::flag::touch | (static_cast<unsigned int>(left) & otp::flag::sequence));
        return report;
    }
    if (answer_.empty() || now < readyAt_) {
        return status();
    }
    Report report{};
    report.back() = static_cast<std::uint8_t>(otp::flag::answer | nextReport_);
    const std::size_t offset = nextReport_ * otp::chunkSize;
    std::copy_n(answer_.begin() + static_cast<std::ptrdiff_t>(offset),
                std::min(otp::chunkSize, answer_.size() - offset), report.begin());
    // After its last part the answer begins again; sequence 0 is how the host knows the end.
    nextReport_ = offset + otp::chunkSize < answer_.size() ? nextReport_ + 1 : 0;
    return report;
}

void OtpApplication::touch(Clock::time_point now)
{
    if (isWaitingForTouch(now)) {
        touchLimit_.reset();
        readyAt_ = now + profile_.replyDelay;
    }
}

bool OtpApplication::isWaitingForTouch(Clock::time_point now) const
{
    return touchLimit_ && now < *touchLimit_;
}

} // namespace vantro::lab
