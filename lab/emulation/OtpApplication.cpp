#include "emulation/OtpApplication.h"

#include <algorithm>
#include <cstring>

#include <openssl/evp.h>
#include <openssl/hmac.h>

namespace vantro::lab {

namespace {

constexpr std::uint8_t writeFlag = 0x80;
constexpr std::uint8_t answerFlag = 0x40;
constexpr std::uint8_t touchFlag = 0x20;
constexpr std::uint8_t sequenceMask = 0x1f;
constexpr std::uint8_t resetRequest = 0x8f;

constexpr std::uint8_t serialCommand = 0x10;
constexpr std::uint8_t slotOneCommand = 0x30;
constexpr std::uint8_t slotTwoCommand = 0x38;

constexpr std::size_t payloadSize = 64;
constexpr std::size_t commandOffset = payloadSize;
constexpr std::size_t checksumOffset = commandOffset + 1;

/// A token blinks for this long before it gives up.
constexpr std::chrono::seconds touchPatience{15};

} // namespace

std::uint16_t otpChecksum(std::span<const std::uint8_t> bytes)
{
    unsigned int checksum = 0xffff;
    for (const std::uint8_t byte : bytes) {
        checksum ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            const bool carry = (checksum & 1U) != 0;
            checksum >>= 1U;
            if (carry) {
                checksum ^= 0x8408U;
            }
        }
    }
    return static_cast<std::uint16_t>(checksum);
}

void OtpApplication::reset()
{
    answer_.clear();
    nextReport_ = 0;
    touchLimit_.reset();
}

void OtpApplication::write(const Report& report, Clock::time_point now)
{
    const std::uint8_t flags = report.back();
    if (flags == resetRequest) {
        reset();
        return;
    }
    const std::size_t sequence = flags & sequenceMask;
    if ((flags & writeFlag) == 0 || sequence >= chunkCount) {
        return;
    }
    if (sequence == 0) {
        reset();
        frame_.fill(0);
    }
    std::copy_n(report.begin(), chunkSize, frame_.begin() + static_cast<std::ptrdiff_t>(sequence * chunkSize));
    if (sequence == chunkCount - 1) {
        execute(now);
    }
}

void OtpApplication::execute(Clock::time_point now)
{
    const std::span<const std::uint8_t> payload(frame_.data(), payloadSize);
    const unsigned int checksum = frame_[checksumOffset] | static_cast<unsigned int>(frame_[checksumOffset + 1]) << 8U;
    if (checksum != otpChecksum(payload)) {
        return;
    }
    const std::uint8_t command = frame_[commandOffset];
    if (command == serialCommand) {
        const std::uint32_t serial = profile_.serial;
        answer({static_cast<std::uint8_t>(serial >> 24U), static_cast<std::uint8_t>(serial >> 16U),
                static_cast<std::uint8_t>(serial >> 8U), static_cast<std::uint8_t>(serial)},
               false, now);
    } else if (command == slotOneCommand || command == slotTwoCommand) {
        const SlotProfile& slot = profile_.slots.at(command == slotOneCommand ? 0 : 1);
        if (slot.key) {
            answer(respond(slot, payload), slot.needsTouch, now);
        }
    }
}

void OtpApplication::answer(std::vector<std::uint8_t> payload, bool needsTouch, Clock::time_point now)
{
    const auto checksum = static_cast<std::uint16_t>(~otpChecksum(payload));
    payload.push_back(static_cast<std::uint8_t>(checksum & 0xffU));
    payload.push_back(static_cast<std::uint8_t>(checksum >> 8U));
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
        report.back() = static_cast<std::uint8_t>(touchFlag | (static_cast<unsigned int>(left) & sequenceMask));
        return report;
    }
    if (answer_.empty() || now < readyAt_) {
        return status();
    }
    Report report{};
    report.back() = static_cast<std::uint8_t>(answerFlag | nextReport_);
    const std::size_t offset = nextReport_ * chunkSize;
    std::copy_n(answer_.begin() + static_cast<std::ptrdiff_t>(offset), std::min(chunkSize, answer_.size() - offset),
                report.begin());
    // After its last part the answer begins again; sequence 0 is how the host knows the end.
    nextReport_ = offset + chunkSize < answer_.size() ? nextReport_ + 1 : 0;
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
