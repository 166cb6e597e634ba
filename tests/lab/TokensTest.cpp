// The virtual tokens as a program sees them: through hidraw ioctls and udev events.

#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
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

#include "foundation/FileDescriptor.h"
#include "tokens/Preload.h"
#include "tokens/TokenBed.h"
#include "tokens/VirtualToken.h"

using namespace std::chrono_literals;
using vantro::FileDescriptor;
using namespace vantro::lab;

namespace {

constexpr SlotKey firstKey{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20};
constexpr SlotKey secondKey{0xff, 0xee};
constexpr std::uint8_t answerFlag = 0x40;
constexpr std::uint8_t touchFlag = 0x20;

/// The host's end of the protocol, no more than these tests need.
class HidrawClient
{
  public:
    explicit HidrawClient(const std::string& node) : file_(::open(node.c_str(), O_RDWR | O_CLOEXEC)) {}

    [[nodiscard]] bool isOpen() const { return bool(file_); }

    /// The 8 bytes of a feature report; nothing, with errno set, when the device refuses.
    [[nodiscard]] std::optional<OtpApplication::Report> read() const
    {
        std::array<std::uint8_t, 9> buffer{};
        if (::ioctl(file_.get(), HIDIOCGFEATURE(9), buffer.data()) < 0) {
            return std::nullopt;
        }
        OtpApplication::Report report{};
        std::copy(buffer.begin() + 1, buffer.end(), report.begin());
        return report;
    }

    [[nodiscard]] bool write(const OtpApplication::Report& report) const
    {
        std::array<std::uint8_t, 9> buffer{};
        std::copy(report.begin(), report.end(), buffer.begin() + 1);
        return ::ioctl(file_.get(), HIDIOCSFEATURE(9), buffer.data()) >= 0;
    }

    [[nodiscard]] bool send(std::uint8_t command, const std::vector<std::uint8_t>& payload = {}) const
    {
        std::array<std::uint8_t, 70> frame{};
        std::copy(payload.begin(), payload.end(), frame.begin());
        frame[64] = command;
        const std::uint16_t checksum = otpChecksum({frame.data(), 64});
        frame[65] = static_cast<std::uint8_t>(checksum & 0xffU);
        frame[66] = static_cast<std::uint8_t>(checksum >> 8U);
        for (std::uint8_t chunk = 0; chunk < 10; ++chunk) {
            OtpApplication::Report report{};
            std::copy_n(frame.begin() + std::ptrdiff_t{chunk} * 7, 7, report.begin());
            report[7] = static_cast<std::uint8_t>(0x80U | chunk);
            if (!write(report)) {
                return false;
            }
        }
        return true;
    }

    /// The answer without its checksum; empty when the token has none within the limit.
    [[nodiscard]] std::vector<std::uint8_t> answer(std::size_t size, std::chrono::milliseconds limit = 5s) const
    {
        const auto end = std::chrono::steady_clock::now() + limit;
        std::vector<std::uint8_t> bytes;
        while (std::chrono::steady_clock::now() < end) {
            const auto report = read();
            if (!report) {
                return {};
            }
            if ((report->back() & answerFlag) == 0) {
                std::this_thread::sleep_for(1ms);
                continue;
            }
            if (!bytes.empty() && (report->back() & 0x1f) == 0) {
                break;
            }
            bytes.insert(bytes.end(), report->begin(), report->end() - 1);
        }
        if (bytes.size() < size + 2 || otpChecksum({bytes.data(), size + 2}) != 0xf0b8) {
            return {};
        }
        bytes.resize(size);
        return bytes;
    }

  private:
    FileDescriptor file_;
};

std::vector<std::uint8_t> hmac(const SlotKey& key, const std::vector<std::uint8_t>& challenge)
{
    std::vector<std::uint8_t> response(20);
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

const std::vector<std::uint8_t> serialOf0x01020304{1, 2, 3, 4};

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
    const HidrawClient client("/dev/hidraw0");
    ASSERT_TRUE(client.isOpen());

    ASSERT_TRUE(client.send(0x10));
    EXPECT_EQ(client.answer(4), serialOf0x01020304);
    EXPECT_TRUE(client.write({0, 0, 0, 0, 0, 0, 0, 0x8f}));
    EXPECT_EQ(client.read()->back(), 0) << "the reset leaves nothing to read";

    std::vector<std::uint8_t> challenge(63);
    for (std::size_t index = 0; index < challenge.size(); ++index) {
        challenge[index] = static_cast<std::uint8_t>(index * 7);
    }
    std::vector<std::uint8_t> padded = challenge;
    padded.push_back(static_cast<std::uint8_t>(challenge.back() + 1));
    ASSERT_TRUE(client.send(0x30, padded));
    EXPECT_EQ(client.answer(20), hmac(firstKey, challenge)) << "the padding is not part of the challenge";
    ASSERT_TRUE(client.send(0x38, padded));
    EXPECT_EQ(client.answer(20), hmac(secondKey, padded)) << "a fixed length takes all 64 bytes";
    ASSERT_TRUE(client.send(0x30, {5, 6}));
    EXPECT_EQ(client.answer(20), hmac(firstKey, {5, 6}));

    const HidrawClient fido("/dev/hidraw1");
    EXPECT_FALSE(fido.read().has_value()) << "only the keyboard interface has the feature report";
}

TEST(VirtualToken, KeepsSilentWithoutASecretAndWaitsForATouch)
{
    TokenBed bed;
    TokenProfile description = profile(7);
    description.otp.slots[0].key.reset();
    description.otp.slots[1].needsTouch = true;
    description.otp.replyDelay = 30ms;
    VirtualToken token(bed, description);
    token.plugIn();
    const HidrawClient client("/dev/hidraw0");

    ASSERT_TRUE(client.send(0x30, {1}));
    EXPECT_TRUE(client.answer(20, 200ms).empty());

    ASSERT_TRUE(client.send(0x38, {1}));
    EXPECT_EQ(client.read()->back() & 0xe0, touchFlag);
    EXPECT_TRUE(token.isWaitingForTouch());
    token.touch();
    EXPECT_FALSE(token.isWaitingForTouch());
    EXPECT_EQ(client.read()->back(), 0) << "the answer takes its time";
    EXPECT_EQ(client.answer(20), hmac(secondKey, {1}));
}

TEST(VirtualToken, IsGoneForWhoeverHasItOpen)
{
    TokenBed bed;
    TokenProfile description = profile(0x01020304);
    description.transferTime = 50ms;
    VirtualToken token(bed, description);
    for (int round = 0; round < 3; ++round) {
        token.plugIn();
        const HidrawClient client("/dev/hidraw0");
        ASSERT_TRUE(client.read().has_value());
        std::thread finger([&token] {
            std::this_thread::sleep_for(20ms);
            token.unplug();
        });
        int error = 0;
        for (int attempt = 0; attempt < 100 && error == 0; ++attempt) {
            error = client.read() ? 0 : errno;
        }
        finger.join();
        EXPECT_EQ(error, ENODEV) << std::strerror(error);
        EXPECT_FALSE(client.write({}));
        EXPECT_EQ(errno, ENODEV);
        EXPECT_FALSE(HidrawClient("/dev/hidraw0").isOpen());
    }
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
        if (process_ == 0) {
            ::_exit(body());
        }
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
        if (::write(ready[1], &descriptor, 1) != 1) {
            return 1;
        }
        for (const char* const expected : {"add hidraw0", "add hidraw1", "remove hidraw1", "remove hidraw0"}) {
            if (listener.next() != expected) {
                return 2;
            }
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

TEST(TokenBed, WaitsForAListenerThatIsBehindAndOutlivesOneThatIsGone)
{
    TokenBed bed;
    {
        const Listener gone;
    }
    const Listener listener;
    TokenProfile description = profile(1);
    VirtualToken token(bed, description);
    constexpr int rounds = 12;
    std::thread plugging([&token] {
        for (int round = 0; round < rounds; ++round) {
            token.plugIn();
            token.unplug();
        }
    });
    // Let the queue fill up before the first event is read.
    std::this_thread::sleep_for(100ms);
    int events = 0;
    while (events < rounds * 4 && !listener.next().empty()) {
        ++events;
    }
    plugging.join();
    EXPECT_EQ(events, rounds * 4);
}

int main(int argc, char** argv)
{
    reexecuteUnderPreload(argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
