#include "tokens/OtpExchange.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <linux/hidraw.h>
#include <optional>
#include <span>
#include <sys/ioctl.h>
#include <thread>
#include <utility>
#include <vector>

#include "foundation/FileDescriptor.h"
#include "usb/OtpFrame.h"

namespace vantro::service {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t serialSize = 4;
constexpr std::size_t checksumSize = 2;
constexpr auto writeLimit = 1s;
constexpr auto slotLimit = 1500ms;
constexpr auto shortestPause = 1ms;
constexpr auto longestPause = 20ms;

TokenFailure failureOf(int error)
{
    switch (error) {
    case ENODEV:
    case ENXIO:
    case ENOENT:
    case ESHUTDOWN:
        return TokenFailure::Gone;
    case EACCES:
    case EPERM:
        return TokenFailure::NotAllowed;
    default:
        return TokenFailure::TransferFailed;
    }
}

/// Pauses between two looks at the token: short at first, for most answers are there at once.
class Pauses
{
  public:
    void pause()
    {
        std::this_thread::sleep_for(next_);
        next_ = std::min<std::chrono::milliseconds>(next_ * 2, longestPause);
    }

  private:
    std::chrono::milliseconds next_ = shortestPause;
};

/// The open device during one exchange.
class Connection
{
  public:
    explicit Connection(const std::string& deviceNode) : device_(::open(deviceNode.c_str(), O_RDWR | O_CLOEXEC)) {}

    [[nodiscard]] bool isOpen() const { return static_cast<bool>(device_); }

    [[nodiscard]] Outcome<otp::Report, TokenFailure> read() const
    {
        // The first byte is the report id, which these reports don't have.
        std::array<std::uint8_t, 1 + sizeof(otp::Report)> buffer = {};
        if (!exchange(HIDIOCGFEATURE(buffer.size()), buffer.data()))
            return failureOf(errno);
        otp::Report report = {};
        std::copy(buffer.begin() + 1, buffer.end(), report.begin());
        return report;
    }

    [[nodiscard]] std::optional<TokenFailure> write(const otp::Report& report) const
    {
        std::array<std::uint8_t, 1 + sizeof(otp::Report)> buffer = {};
        std::copy(report.begin(), report.end(), buffer.begin() + 1);
        if (!exchange(HIDIOCSFEATURE(buffer.size()), buffer.data()))
            return failureOf(errno);
        return std::nullopt;
    }

    [[nodiscard]] std::optional<TokenFailure> writeWhenReady(const otp::Report& report, const Limit& limit) const
    {
        Pauses pauses;
        while (true) {
            const auto status = read();
            if (!status)
                return status.failure();
            if (limit.isOver())
                return TokenFailure::NotReady;
            if ((status->back() & otp::flag::write) == 0)
                return write(report);
            pauses.pause();
        }
    }

    /// Makes the token forget what it was asked, also a touch that it still waits for.
    void reset() const
    {
        otp::Report report = {};
        report.back() = otp::flag::reset;
        static_cast<void>(write(report));
    }

  private:
    bool exchange(unsigned long request, void* buffer) const
    {
        int result = 0;
        do {
            result = ::ioctl(device_.get(), request, buffer);
        } while (result < 0 && errno == EINTR);
        return result >= 0;
    }

    FileDescriptor device_;
};

/// How long a token may be silent; absent: as long as the limit allows.
using Patience = std::optional<Limit::Clock::duration>;

struct Answer
{
    std::vector<std::uint8_t> bytes;
    bool wantsTouch = false;
};

/// The first report of an answer, and whether a touch was waited for before.
struct FirstReport
{
    Outcome<otp::Report, TokenFailure> report;
    bool wantsTouch = false;
};

/// Waits for the first report of the answer: as long as `patience` allows, and the whole limit while the token waits
/// for a touch.
FirstReport awaitAnswer(const Connection& token, const Patience& patience, const Limit& limit,
                        const TouchWanted& onTouchWanted)
{
    Limit silence = patience ? limit.within(*patience) : limit;
    bool wantsTouch = false;
    Pauses pauses;
    while (true) {
        const auto report = token.read();
        if (!report || (report->back() & otp::flag::answer) != 0)
            return {report, wantsTouch};
        if ((report->back() & otp::flag::touch) != 0) {
            // Its answer follows the touch a moment later.
            if (!std::exchange(wantsTouch, true) && onTouchWanted)
                onTouchWanted();
            silence = limit.within(slotLimit);
        }
        if (silence.isOver() && (limit.isOver() || (report->back() & otp::flag::touch) == 0))
            return {wantsTouch ? TokenFailure::TouchMissing : TokenFailure::NoAnswer, wantsTouch};
        pauses.pause();
    }
}

Outcome<Answer, TokenFailure> readAnswer(const Connection& token, std::size_t size, const Patience& patience,
                                         const Limit& limit, const TouchWanted& onTouchWanted)
{
    auto [report, wantsTouch] = awaitAnswer(token, patience, limit, onTouchWanted);
    Answer answer{{}, wantsTouch};
    for (unsigned int number = 0; report; ++number) {
        if ((report->back() & otp::flag::answer) == 0)
            return TokenFailure::BadAnswer;
        const unsigned int sequence = report->back() & otp::flag::sequence;
        if (sequence == 0 && number > 0)
            break;
        if (sequence != number)
            return TokenFailure::BadAnswer;
        answer.bytes.insert(answer.bytes.end(), report->begin(), report->end() - 1);
        if (limit.isOver())
            return TokenFailure::NoAnswer;
        report = token.read();
    }
    if (!report)
        return report.failure();
    if (answer.bytes.size() < size + checksumSize ||
        !otp::endsInChecksum(std::span(answer.bytes).first(size + checksumSize)))
        return TokenFailure::BadAnswer;
    answer.bytes.resize(size);
    return answer;
}

/// One command and its answer of `size` bytes.
Outcome<Answer, TokenFailure> exchange(const std::string& deviceNode, std::uint8_t command, const otp::Payload& payload,
                                       std::size_t size, const Limit& limit, const Patience& patience,
                                       const TouchWanted& onTouchWanted)
{
    const Connection token(deviceNode);
    if (!token.isOpen())
        return failureOf(errno);
    // A service that was killed in the middle of an exchange leaves its answer, or a wait for a touch, behind.
    const auto status = token.read();
    if (limit.isOver())
        return TokenFailure::NoAnswer;
    if (status && (status->back() & (otp::flag::answer | otp::flag::touch)) != 0)
        token.reset();
    for (const auto& report : otp::reportsOf(command, payload)) {
        if (const auto failure = token.writeWhenReady(report, limit.within(writeLimit))) {
            token.reset();
            return *failure;
        }
    }
    auto answer = readAnswer(token, size, patience, limit, onTouchWanted);
    if (answer || answer.failure() != TokenFailure::Gone)
        token.reset();
    return answer;
}

} // namespace

Outcome<std::uint32_t, TokenFailure> readSerial(const std::string& deviceNode, const Limit& limit)
{
    const auto answer = exchange(deviceNode, otp::command::serial, {}, serialSize, limit, std::nullopt, {});
    if (!answer)
        return answer.failure();
    std::uint32_t serial = 0;
    for (const std::uint8_t byte : answer->bytes)
        serial = (serial << 8) | byte;
    return serial;
}

Outcome<SlotAnswer, TokenFailure> answerChallenge(const std::string& deviceNode, Slot slot, const Challenge& challenge,
                                                  const Limit& limit, const TouchWanted& onTouchWanted)
{
    SlotAnswer result;
    // A slot for challenges of any length drops the trailing bytes that equal the last one: the padding must differ.
    otp::Payload payload = {};
    std::copy(challenge.begin(), challenge.end(), payload.begin());
    payload.back() = static_cast<std::uint8_t>(~challenge.back());
    const std::uint8_t command = slot == Slot::One ? otp::command::slotOne : otp::command::slotTwo;
    const auto answer = exchange(deviceNode, command, payload, result.response.size(), limit, slotLimit, onTouchWanted);
    if (!answer && answer.failure() == TokenFailure::NoAnswer && !limit.isOver())
        return TokenFailure::SlotNotProgrammed;
    if (!answer)
        return answer.failure();
    std::copy(answer->bytes.begin(), answer->bytes.end(), result.response.begin());
    result.wantsTouch = answer->wantsTouch;
    return result;
}

} // namespace vantro::service
