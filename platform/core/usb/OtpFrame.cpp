#include "usb/OtpFrame.h"

#include <algorithm>

namespace vantro::otp {
namespace {

constexpr std::uint16_t polynomial = 0x8408;
constexpr std::uint16_t residual = 0xf0b8;

} // namespace

std::uint16_t checksum(std::span<const std::uint8_t> bytes)
{
    std::uint16_t value = 0xffff;
    for (const std::uint8_t byte : bytes) {
        value = static_cast<std::uint16_t>(value ^ byte);
        for (int bit = 0; bit < 8; ++bit)
            value = static_cast<std::uint16_t>((value >> 1) ^ ((value & 1) != 0 ? polynomial : 0));
    }
    return value;
}

bool endsInChecksum(std::span<const std::uint8_t> bytes)
{
    return checksum(bytes) == residual;
}

std::vector<Report> reportsOf(std::uint8_t command, const Payload& payload)
{
    std::array<std::uint8_t, frameSize> frame = {};
    std::copy(payload.begin(), payload.end(), frame.begin());
    const std::uint16_t sum = checksum(payload);
    frame[payloadSize] = command;
    frame[payloadSize + 1] = static_cast<std::uint8_t>(sum & 0xff);
    frame[payloadSize + 2] = static_cast<std::uint8_t>(sum >> 8);

    std::vector<Report> reports;
    for (std::size_t index = 0; index < chunkCount; ++index) {
        const auto chunk = std::span(frame).subspan(index * chunkSize, chunkSize);
        const bool isZero = std::all_of(chunk.begin(), chunk.end(), [](std::uint8_t byte) { return byte == 0; });
        if (isZero && index != 0 && index != chunkCount - 1)
            continue;
        Report report = {};
        std::copy(chunk.begin(), chunk.end(), report.begin());
        report.back() = static_cast<std::uint8_t>(flag::write | index);
        reports.push_back(report);
    }
    return reports;
}

} // namespace vantro::otp
