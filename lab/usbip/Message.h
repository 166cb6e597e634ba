#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// The messages by which the kernel's virtual USB host controller (vhci-hcd) and a device talk over a stream, as the
/// kernel's documentation of USB/IP has them.
namespace vantro::lab::usbip {

/// Each message begins with one, whatever it is about.
inline constexpr std::size_t headerSize = 48;

/// The first stage of a control transfer.
struct Setup
{
    std::uint8_t requestType = 0;
    std::uint8_t request = 0;
    std::uint16_t value = 0;
    std::uint16_t index = 0;
    std::uint16_t length = 0;
};

/// What the controller asks for.
struct Request
{
    enum class Kind
    {
        /// A transfer.
        Submit,
        /// That a transfer, the one with the number `unlinked`, is to be forgotten.
        Unlink
    };

    Kind kind = Kind::Submit;
    std::uint32_t number = 0;
    bool isToHost = false;
    std::uint32_t endpoint = 0;
    /// Of the transfer's data; those to the device follow the header.
    std::uint32_t length = 0;
    Setup setup;
    std::uint32_t unlinked = 0;

    /// How many bytes follow the header.
    [[nodiscard]] std::size_t dataSize() const { return kind == Kind::Submit && !isToHost ? length : 0; }
};

/// Throws std::runtime_error for what is no request.
[[nodiscard]] Request parsed(std::span<const std::uint8_t, headerSize> header);

/// The end of a transfer: 0 or a negative errno as `status`, and what goes to the host, or how much came from there.
[[nodiscard]] std::vector<std::uint8_t> answer(const Request& request, int status, std::span<const std::uint8_t> data);

/// Whether a transfer was forgotten; otherwise its answer is on the way.
[[nodiscard]] std::vector<std::uint8_t> answerToUnlink(const Request& request, bool isForgotten);

} // namespace vantro::lab::usbip
