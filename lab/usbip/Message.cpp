#include "usbip/Message.h"

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <string>

namespace vantro::lab::usbip {

namespace {

// What a message is about, its first word.
constexpr std::uint32_t commandSubmit = 1;
constexpr std::uint32_t commandUnlink = 2;
constexpr std::uint32_t replySubmit = 3;
constexpr std::uint32_t replyUnlink = 4;

// Where the words of a header stand.
constexpr std::size_t numberAt = 4;
constexpr std::size_t directionAt = 12;
constexpr std::size_t endpointAt = 16;
constexpr std::size_t lengthAt = 24;
constexpr std::size_t setupAt = 40;
constexpr std::size_t unlinkedAt = 20;
constexpr std::size_t statusAt = 20;
constexpr std::size_t actualLengthAt = 24;

std::uint32_t wordAt(std::span<const std::uint8_t, headerSize> header, std::size_t position)
{
    std::uint32_t word = 0;
    for (const std::uint8_t byte : header.subspan(position, sizeof word)) {
        word = word << 8U | byte;
    }
    return word;
}

void putWord(std::vector<std::uint8_t>& message, std::size_t position, std::uint32_t word)
{
    for (unsigned int shift = 32; shift > 0; ++position) {
        shift -= 8;
        message.at(position) = static_cast<std::uint8_t>(word >> shift);
    }
}

std::vector<std::uint8_t> reply(std::uint32_t about, const Request& request, int status)
{
    std::vector<std::uint8_t> message(headerSize);
    putWord(message, 0, about);
    putWord(message, numberAt, request.number);
    putWord(message, statusAt, static_cast<std::uint32_t>(status));
    return message;
}

} // namespace

Request parsed(std::span<const std::uint8_t, headerSize> header)
{
    Request request;
    const std::uint32_t about = wordAt(header, 0);
    if (about != commandSubmit && about != commandUnlink) {
        throw std::runtime_error("the host controller sends a message of unknown kind " + std::to_string(about));
    }
    request.kind = about == commandSubmit ? Request::Kind::Submit : Request::Kind::Unlink;
    request.number = wordAt(header, numberAt);
    request.isToHost = wordAt(header, directionAt) != 0;
    request.endpoint = wordAt(header, endpointAt);
    if (request.kind == Request::Kind::Unlink) {
        request.unlinked = wordAt(header, unlinkedAt);
        return request;
    }
    request.length = wordAt(header, lengthAt);
    const auto setup = header.subspan<setupAt, 8>();
    const auto number = [&setup](std::size_t position) { // little endian, unlike the rest
        return static_cast<std::uint16_t>(setup[position] | static_cast<unsigned int>(setup[position + 1]) << 8U);
    };
    request.setup = {setup[0], setup[1], number(2), number(4), number(6)};
    return request;
}

std::vector<std::uint8_t> answer(const Request& request, int status, std::span<const std::uint8_t> data)
{
    std::vector<std::uint8_t> message = reply(replySubmit, request, status);
    if (!request.isToHost) {
        putWord(message, actualLengthAt, status == 0 ? request.length : 0);
        return message;
    }
    data = data.first(std::min<std::size_t>(data.size(), request.length));
    putWord(message, actualLengthAt, static_cast<std::uint32_t>(data.size()));
    message.resize(headerSize + data.size());
    std::copy(data.begin(), data.end(), message.begin() + headerSize);
    return message;
}

std::vector<std::uint8_t> answerToUnlink(const Request& request, bool isForgotten)
{
    return reply(replyUnlink, request, isForgotten ? -ECONNRESET : 0);
}

} // namespace vantro::lab::usbip
