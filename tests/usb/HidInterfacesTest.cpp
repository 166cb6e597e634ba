#include "usb/HidInterfaces.h"

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <umockdev.h>

#include "emulation/TokenBed.h"
#include "emulation/VirtualToken.h"

namespace {
std::atomic<int> lostReads = 0;
}

/// The program's own recvmsg comes before every library's: a test makes a read fail as the kernel does when a socket's
/// buffer ran full.
extern "C" ssize_t recvmsg(int descriptor, msghdr* message, int flags)
{
    using Function = ssize_t (*)(int, msghdr*, int);
    static const auto next = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "recvmsg"));
    const ssize_t result = next(descriptor, message, flags);
    if (result > 0 && lostReads > 0) {
        --lostReads;
        errno = ENOBUFS;
        return -1;
    }
    return result;
}

namespace vantro {
namespace {

using lab::TokenInterface;
using testing::ElementsAre;

lab::TokenProfile tokenOf(std::uint16_t productId)
{
    lab::TokenProfile profile;
    profile.productId = productId;
    return profile;
}

class HidInterfacesTest : public testing::Test
{
  protected:
    /// "+0407/8" for an interface of product 0407 with input reports of 8 bytes that came.
    void note(char sign, const HidInterface& interface)
    {
        char text[32];
        std::snprintf(text, sizeof text, "%c%04x/%zu", sign, unsigned{interface.productId},
                      interface.maximumInputReportSize);
        seen.emplace_back(text);
        interfaces.push_back(interface);
    }

    /// The report descriptor of the one interface with this place in its device.
    static std::filesystem::path descriptorBelow(const std::filesystem::path& folder, const std::string& place)
    {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
            if (entry.path().filename() == "report_descriptor" &&
                entry.path().parent_path().parent_path().filename().string().ends_with(":" + place))
                return entry.path();
        return {};
    }

    std::vector<std::string> take() { return std::exchange(seen, {}); }

    lab::TokenBed bed;
    lab::VirtualToken first{bed, tokenOf(0x0407)};
    lab::VirtualToken second{bed, tokenOf(0x0116)};
    std::vector<std::string> seen;
    std::vector<HidInterface> interfaces;
    HidInterfaceWatcher watcher{[this](const HidInterface& interface) { note('+', interface); },
                                [this](const HidInterface& interface) { note('-', interface); }};
};

TEST_F(HidInterfacesTest, ReportsWhatIsThereThenWhatComesAndGoes)
{
    second.plugIn();
    first.plugIn();
    watcher.enumerate();
    EXPECT_THAT(take(), ElementsAre("+0116/8", "+0116/64", "+0407/8", "+0407/64")) << "the longest there first";
    watcher.processEvents();
    EXPECT_THAT(take(), ElementsAre()) << "their events are still in the socket and tell nothing new";

    first.unplug();
    watcher.processEvents();
    EXPECT_THAT(take(), testing::UnorderedElementsAre("-0407/8", "-0407/64"));
    first.plugIn();
    watcher.processEvents();
    EXPECT_THAT(take(), ElementsAre("+0407/8", "+0407/64"));
}

TEST_F(HidInterfacesTest, DescribesAnInterface)
{
    first.plugIn();
    watcher.enumerate();
    ASSERT_EQ(interfaces.size(), 2U);
    const HidInterface& keyboard = interfaces.front();
    const HidInterface& fido = interfaces.back();
    EXPECT_EQ(keyboard.vendorId, 0x1050);
    EXPECT_EQ(keyboard.deviceNode, first.deviceNode(TokenInterface::keyboard));
    EXPECT_EQ(keyboard.usagePage, 0x0001);
    EXPECT_EQ(keyboard.usage, 0x06);
    EXPECT_EQ(fido.deviceNode, first.deviceNode(TokenInterface::fido));
    EXPECT_EQ(fido.usagePage, 0xf1d0);
    EXPECT_EQ(fido.usage, 0x01);
    EXPECT_EQ(keyboard.usbDevicePath, fido.usbDevicePath);
    EXPECT_NE(keyboard.sysPath, fido.sysPath);
    EXPECT_GT(keyboard.usbDeviceNumber, 0U);
    EXPECT_FALSE(keyboard.name.empty());
}

TEST_F(HidInterfacesTest, InterfaceThatWentAndCanStillBeSeenHasGone)
{
    first.plugIn();
    watcher.enumerate();
    umockdev_testbed_uevent(bed.handle(), interfaces.front().sysPath.c_str(), "remove");
    watcher.processEvents();
    watcher.enumerate();
    EXPECT_THAT(take(), ElementsAre("+0407/8", "+0407/64", "-0407/8"));
    umockdev_testbed_uevent(bed.handle(), interfaces.front().sysPath.c_str(), "add");
    watcher.processEvents();
    EXPECT_THAT(take(), ElementsAre("+0407/8"));
}

TEST_F(HidInterfacesTest, LostEventsAreMadeUpForByEnumerating)
{
    first.plugIn();
    watcher.enumerate();
    watcher.processEvents();
    take();

    first.unplug();
    second.plugIn();
    lostReads = 3;
    watcher.processEvents();
    EXPECT_EQ(lostReads, 0);
    EXPECT_THAT(take(), testing::UnorderedElementsAre("-0407/8", "-0407/64", "+0116/8", "+0116/64"));
    watcher.processEvents();
    EXPECT_THAT(take(), ElementsAre());
}

TEST_F(HidInterfacesTest, InterfaceThatIsGoneBeforeItsEventIsReadIsNotReported)
{
    first.plugIn();
    first.unplug();
    watcher.processEvents();
    EXPECT_THAT(take(), ElementsAre());
}

TEST_F(HidInterfacesTest, OfADevicePulledOutWhileItIsLookedAtAllInterfacesComeAndGo)
{
    first.plugIn();
    watcher.enumerate();
    first.unplug();
    watcher.processEvents();
    take();

    first.plugIn(TokenInterface::keyboard);
    watcher.processEvents();
    first.plugIn(TokenInterface::fido);
    first.unplug();
    watcher.processEvents();
    EXPECT_THAT(take(), ElementsAre("+0407/8", "+0407/64", "-0407/8", "-0407/64"));
    EXPECT_EQ(interfaces.back().deviceNode, "") << "another token's node may have the name by now";

    // The other one is the first to go.
    first.plugIn();
    std::filesystem::remove(descriptorBelow(bed.rootFolder() / "sys" / "devices", "1.0"));
    watcher.processEvents();
    first.unplug();
    watcher.processEvents();
    EXPECT_THAT(take(), testing::UnorderedElementsAre("+0407/8", "+0407/64", "-0407/8", "-0407/64"));
}

TEST_F(HidInterfacesTest, HandlerThatTakesItsTimeHoldsUpNoEvent)
{
    bool isSocketEmpty = false;
    HidInterfaceWatcher slow(
        [&](const HidInterface&) {
            pollfd wait = {slow.fileDescriptor(), POLLIN, 0};
            isSocketEmpty = ::poll(&wait, 1, 0) == 0;
        },
        [](const HidInterface&) {});
    first.plugIn();
    slow.processEvents();
    EXPECT_TRUE(isSocketEmpty);
}

} // namespace
} // namespace vantro
