// The virtual tokens as a program sees them: through hidraw ioctls and udev events.

#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <libudev.h>
#include <linux/hidraw.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "emulation/TokenBed.h"
#include "emulation/VirtualToken.h"
#include "foundation/FileDescriptor.h"
#include "tokens/OtpExchange.h"

using namespace std::chrono_literals;
using vantro::FileDescriptor;
namespace failure_reason = vantro::failure_reason;
using namespace vantro::service;
using namespace vantro::lab;

namespace {

constexpr SlotKey firstKey{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20};
constexpr SlotKey secondKey{0xff, 0xee};

Limit within(Limit::Clock::duration duration)
{
    return {Limit::Clock::now() + duration, {}};
}

/// One feature report; nothing, with errno set, when the device refuses.
std::optional<OtpApplication::Report> readReport(const FileDescriptor& device)
{
    std::array<std::uint8_t, 9> buffer{};
    if (::ioctl(device.get(), HIDIOCGFEATURE(9), buffer.data()) < 0)
        return std::nullopt;
    OtpApplication::Report report{};
    std::copy(buffer.begin() + 1, buffer.end(), report.begin());
    return report;
}

FileDescriptor opened(const char* node)
{
    return FileDescriptor(::open(node, O_RDWR | O_CLOEXEC));
}

using Response = decltype(SlotAnswer::response);

Response hmac(const SlotKey& key, std::span<const std::uint8_t> challenge)
{
    Response response{};
    HMAC(EVP_sha1(), key.data(), static_cast<int>(key.size()), challenge.data(), challenge.size(), response.data(),
         nullptr);
    return response;
}

TokenProfile profile(std::uint32_t serial)
{
    TokenProfile token;
    token.otp.serial = serial;
    token.otp.slots[0].key = firstKey;
    token.otp.slots[1].key = secondKey;
    return token;
}

} // namespace

TEST(VirtualToken, AnswersAsATokenDoes)
{
    TokenBed bed;
    TokenProfile description = profile(0x01020304);
    description.otp.slots[1].isFixedLength = true;
    VirtualToken token(bed, description);
    token.plugIn();
    ASSERT_EQ(token.deviceNode(TokenInterface::keyboard), "/dev/hidraw0");
    ASSERT_EQ(token.deviceNode(TokenInterface::fido), "/dev/hidraw1");
    const auto serial = readSerial("/dev/hidraw0", within(5s));
    ASSERT_TRUE(serial);
    EXPECT_EQ(*serial, 0x01020304U);
    EXPECT_EQ(readReport(opened("/dev/hidraw0"))->back(), 0) << "the reset leaves nothing to read";

    Challenge challenge{};
    for (std::size_t index = 0; index < challenge.size(); ++index)
        challenge[index] = static_cast<std::uint8_t>(index * 7);
    const auto first = answerChallenge("/dev/hidraw0", Slot::One, challenge, within(5s));
    ASSERT_TRUE(first);
    EXPECT_EQ(first->response, hmac(firstKey, challenge)) << "the padding is not part of the challenge";
    std::vector<std::uint8_t> padded(challenge.begin(), challenge.end());
    padded.push_back(static_cast<std::uint8_t>(~challenge.back()));
    const auto second = answerChallenge("/dev/hidraw0", Slot::Two, challenge, within(5s));
    ASSERT_TRUE(second);
    EXPECT_EQ(second->response, hmac(secondKey, padded)) << "a fixed length takes all 64 bytes";

    EXPECT_FALSE(readReport(opened("/dev/hidraw1"))) << "only the keyboard interface has the feature report";
}

TEST(VirtualToken, HasNoAnswerWhereTimeRunsOutBeforeItTookTheCommand)
{
    TokenBed bed;
    TokenProfile description = profile(7);
    description.transferTime = 50ms;
    VirtualToken token(bed, description);
    token.plugIn();
    EXPECT_EQ(reasonOf(readSerial("/dev/hidraw0", within(75ms)).failure()), failure_reason::noAnswer);
}

namespace {

struct Unref
{
    void operator()(udev* context) const { udev_unref(context); }
    void operator()(udev_monitor* monitor) const { udev_monitor_unref(monitor); }
    void operator()(udev_device* device) const { udev_device_unref(device); }
};

/// Hears of hidraw nodes through udev.
class Listener
{
  public:
    Listener()
    {
        udev_monitor_filter_add_match_subsystem_devtype(monitor_.get(), "hidraw", nullptr);
        udev_monitor_enable_receiving(monitor_.get());
    }

    [[nodiscard]] int descriptor() const { return udev_monitor_get_fd(monitor_.get()); }

    /// "add hidraw0" and the like; empty when nothing comes for a while.
    [[nodiscard]] std::string next(std::chrono::milliseconds limit = 10s) const
    {
        pollfd event{descriptor(), POLLIN, 0};
        if (::poll(&event, 1, static_cast<int>(limit.count())) != 1) {
            return {};
        }
        const std::unique_ptr<udev_device, Unref> device(udev_monitor_receive_device(monitor_.get()));
        return device ? std::string(udev_device_get_action(device.get())) + " " + udev_device_get_sysname(device.get())
                      : std::string("unreadable");
    }

  private:
    std::unique_ptr<udev, Unref> context_{udev_new()};
    std::unique_ptr<udev_monitor, Unref> monitor_{udev_monitor_new_from_netlink(context_.get(), "udev")};
};

/// Runs `body` in a child process under the same emulation; the child's exit status is what it answers.
class Child
{
  public:
    explicit Child(const std::function<int()>& body) : process_(::fork())
    {
        if (process_ == 0)
            ::_exit(body());
    }

    [[nodiscard]] int wait() const
    {
        int status = -1;
        ::waitpid(process_, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    pid_t process_;
};

} // namespace

TEST(TokenBed, TellsEveryListeningProcessInOrder)
{
    TokenBed bed;
    constexpr int lastTakenDescriptor = 60;
    std::array<int, 2> ready{};
    ASSERT_EQ(::pipe(ready.data()), 0);
    const auto listen = [&ready] {
        // Both listeners get the same descriptor, whatever the emulation has open at the moment of the fork.
        while (::dup(ready[1]) < lastTakenDescriptor)
            continue;
        const Listener listener;
        const char descriptor = static_cast<char>(listener.descriptor());
        if (::write(ready[1], &descriptor, 1) != 1)
            return 1;
        for (const char* const expected : {"add hidraw0", "add hidraw1", "remove hidraw1", "remove hidraw0"}) {
            if (listener.next() != expected)
                return 2;
        }
        return 0;
    };
    const Child one(listen);
    const Child other(listen);
    std::array<char, 2> descriptors{};
    ASSERT_EQ(::read(ready[0], &descriptors[0], 1), 1);
    ASSERT_EQ(::read(ready[0], &descriptors[1], 1), 1);
    EXPECT_EQ(descriptors[0], descriptors[1]) << "the case that names by number alone confuse";

    TokenProfile description = profile(1);
    description.interfaces = {TokenInterface::fido};
    VirtualToken token(bed, description);
    token.plugIn();
    token.plugIn(TokenInterface::keyboard);
    EXPECT_EQ(token.deviceNode(TokenInterface::keyboard), "/dev/hidraw1");
    token.unplug();
    EXPECT_EQ(one.wait(), 0);
    EXPECT_EQ(other.wait(), 0);
}
