#include "Fuzzer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <linux/hidraw.h>
#include <string>
#include <sys/ioctl.h>

#include "tokens/OtpExchange.h"
#include "usb/OtpFrame.h"

namespace {

using namespace vantro::service;
namespace otp = vantro::otp;

constexpr std::size_t reportSize = sizeof(otp::Report);

/// The token's side: what it says, report by report, what it was told, and what it answered to that.
struct Token
{
    std::string_view reports;
    std::array<std::uint8_t, 70> frame = {};
    std::string answer;
};

Token token;

} // namespace

/// Stands for the kernel's: the token behind every node is the one above, and gone when it has nothing left to say.
extern "C" int ioctl(int /*device*/, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    auto* const report = va_arg(arguments, std::uint8_t*) + 1;
    va_end(arguments);
    if (request == HIDIOCSFEATURE(1 + reportSize)) {
        const unsigned int flags = report[otp::chunkSize];
        if (flags == otp::flag::reset)
            return 0;
        token.answer.clear();
        std::copy_n(report, otp::chunkSize, token.frame.begin() + (flags & otp::flag::sequence) * otp::chunkSize);
        return 0;
    }
    if (token.reports.size() < reportSize) {
        errno = ENODEV;
        return -1;
    }
    std::copy_n(token.reports.begin(), reportSize, report);
    token.reports.remove_prefix(reportSize);
    if ((report[otp::chunkSize] & otp::flag::answer) != 0)
        token.answer.append(report, report + otp::chunkSize);
    return 0;
}

/// Stands for the C library's: nobody waits for this token.
extern "C" int nanosleep(const timespec* /*time*/, timespec* /*left*/)
{
    return 0;
}

/// Any reports are an answer or a failure; what is told is what was asked, and what is answered what the token said.
void vantro::fuzz::look(std::string_view bytes)
{
    const Limit limit{Limit::Clock::now() + std::chrono::hours(1), {}};
    token = {bytes, {}, {}};
    if (const auto serial = readSerial("/dev/null", limit)) {
        for (std::size_t place = 0; place < 4; ++place)
            expect(static_cast<std::uint8_t>(token.answer[place]) ==
                   static_cast<std::uint8_t>(*serial >> (24 - 8 * place)));
    }

    Challenge challenge = {};
    std::copy_n(bytes.begin(), std::min(bytes.size(), challenge.size()), challenge.begin());
    token = {bytes, {}, {}};
    if (const auto answer = answerChallenge("/dev/null", Slot::Two, challenge, limit)) {
        expect(std::equal(challenge.begin(), challenge.end(), token.frame.begin()));
        expect(token.frame[63] != token.frame[62] && token.frame[64] == 0x38);
        expect(std::memcmp(answer->response.data(), token.answer.data(), answer->response.size()) == 0);
    }
}
