#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// The frames of a token's OTP application: how a command is cut into feature reports, and what an answer ends in. The
/// same for whoever asks a token and for whoever emulates one.
namespace vantro::otp {

inline constexpr std::size_t payloadSize = 64;
inline constexpr std::size_t chunkSize = 7;
/// Payload, command, checksum and three bytes of zeros.
inline constexpr std::size_t frameSize = 70;
inline constexpr std::size_t chunkCount = frameSize / chunkSize;

/// What a frame asks for.
namespace command {
inline constexpr std::uint8_t serial = 0x10;
/// The slot's HMAC-SHA1 of the payload.
inline constexpr std::uint8_t slotOne = 0x30;
inline constexpr std::uint8_t slotTwo = 0x38;
} // namespace command

/// What stands in the last byte of a feature report.
namespace flag {
/// The token has an answer; the low bits number its reports.
inline constexpr std::uint8_t answer = 0x40;
/// The token has not taken the report written last; in a written report: here is one.
inline constexpr std::uint8_t write = 0x80;
/// The token waits for a touch.
inline constexpr std::uint8_t touch = 0x20;
inline constexpr std::uint8_t sequence = 0x1f;
/// Written alone: forget the command and its answer.
inline constexpr std::uint8_t reset = 0x8f;
} // namespace flag

/// Seven bytes of data and the flags.
using Report = std::array<std::uint8_t, chunkSize + 1>;
using Payload = std::array<std::uint8_t, payloadSize>;

/// CRC-16 with the reflected polynomial 0x8408, starting from 0xffff.
[[nodiscard]] std::uint16_t checksum(std::span<const std::uint8_t> bytes);

/// Whether `bytes` end in the complemented checksum of what stands before it.
[[nodiscard]] bool endsInChecksum(std::span<const std::uint8_t> bytes);

/// The reports that carry one command, in the order of writing; those of zeros in the middle are left out.
[[nodiscard]] std::vector<Report> reportsOf(std::uint8_t command, const Payload& payload);

} // namespace vantro::otp
