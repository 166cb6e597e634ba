#include "usbip/PluggedToken.h"

#include <array>
#include <cerrno>

#include <sys/socket.h>

#include "usbip/HostPort.h"

namespace vantro::lab::usbip {

PluggedToken::PluggedToken(UsbToken& token, const Mood& mood) : token_(token), mood_(mood), stream_(plugIntoHost())
{
    token_.reset();
}

bool PluggedToken::serve()
{
    std::array<std::uint8_t, 4096> bytes{};
    const ssize_t count = ::recv(stream_.get(), bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (count < 0) {
        return errno == EAGAIN || errno == EINTR;
    }
    if (count == 0) {
        return false;
    }
    received_.insert(received_.end(), bytes.begin(), bytes.begin() + count);
    std::span<const std::uint8_t> rest(received_);
    while (rest.size() >= headerSize) {
        const Request request = parsed(rest.first<headerSize>());
        if (rest.size() - headerSize < request.dataSize()) {
            break;
        }
        take(request, rest.subspan(headerSize, request.dataSize()));
        rest = rest.subspan(headerSize + request.dataSize());
    }
    received_.erase(received_.begin(), received_.end() - static_cast<std::ptrdiff_t>(rest.size()));
    sendDue(Clock::now());
    return true;
}

void PluggedToken::take(const Request& request, std::span<const std::uint8_t> data)
{
    if (request.kind == Request::Kind::Unlink) {
        forget(request);
        return;
    }
    std::optional<Clock::time_point> due = Clock::now();
    // Nobody types on the keyboard, and the FIDO application says nothing.
    if (mood_.isHung || (request.endpoint != 0 && request.isToHost)) {
        due.reset();
    } else if (request.endpoint == 0 && UsbToken::isFeatureReport(request.setup)) {
        *due += mood_.transferTime;
    }
    transfers_.push_back({request, {data.begin(), data.end()}, due});
}

void PluggedToken::forget(const Request& request)
{
    const auto isMeant = [&request](const Transfer& transfer) { return transfer.request.number == request.unlinked; };
    send(answerToUnlink(request, std::erase_if(transfers_, isMeant) > 0));
}

void PluggedToken::sendDue(Clock::time_point now)
{
    for (auto transfer = transfers_.begin(); transfer != transfers_.end();) {
        if (transfer->due && *transfer->due <= now) {
            end(*transfer);
            transfer = transfers_.erase(transfer);
        } else {
            ++transfer;
        }
    }
}

std::optional<PluggedToken::Clock::time_point> PluggedToken::nextDue() const
{
    std::optional<Clock::time_point> next;
    for (const Transfer& transfer : transfers_) {
        if (transfer.due && (!next || *transfer.due < *next)) {
            next = transfer.due;
        }
    }
    return next;
}

void PluggedToken::end(const Transfer& transfer)
{
    if (transfer.request.endpoint != 0) {
        send(answer(transfer.request, 0, {}));
        return;
    }
    const auto data = token_.control(transfer.request.setup, transfer.data);
    send(answer(transfer.request, data ? 0 : -EPIPE, data.value_or(std::vector<std::uint8_t>())));
}

void PluggedToken::send(const std::vector<std::uint8_t>& message) const
{
    // A host that has gone is noticed where its messages are read.
    [[maybe_unused]] const auto sent = ::send(stream_.get(), message.data(), message.size(), MSG_NOSIGNAL);
}

} // namespace vantro::lab::usbip
