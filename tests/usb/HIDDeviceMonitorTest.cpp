#include "usb/HIDDeviceMonitor.h"

#include <algorithm>
#include <any>
#include <atomic>
#include <cstddef>
#include <set>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "emulation/TokenBed.h"
#include "emulation/VirtualToken.h"
#include "support/Recorder.h"

namespace vantro {
namespace {

class HIDDeviceMonitorTest : public testing::Test
{
  protected:
    struct Post
    {
        NotificationName name;
        HIDDevice device;
        std::thread::id thread;
    };

    HIDDeviceMonitorTest()
    {
        for (const auto& name : {HIDDeviceConnected, HIDDeviceDisconnected})
            observations_.push_back(
                NotificationCenter::defaultCenter().addObserver(name, [this](const Notification& notification) {
                    posts_.add(
                        {notification.name, std::any_cast<HIDDevice>(notification.object), std::this_thread::get_id()});
                    isHeldUp_.wait(true);
                }));
    }

    void TearDown() override
    {
        monitor_.stop();
        if (thread_.joinable())
            thread_.join();
    }

    void start()
    {
        thread_ = std::thread([this] { ended_ = monitor_.start(); });
    }

    lab::TokenBed bed_;
    lab::VirtualToken token_{bed_, {}};
    HIDDeviceMonitor monitor_{{{0x1050, 0x0407}, {0x1050, 0x0116}}, 64};
    std::thread thread_;
    std::error_code ended_;
    /// While true, the monitor's thread stays in the observer.
    std::atomic<bool> isHeldUp_ = false;

    tests::Recorder<Post> posts_;

  private:
    std::vector<Observation> observations_;
};

TEST_F(HIDDeviceMonitorTest, PostsOnItsThreadForEveryInterface)
{
    token_.plugIn();
    start();
    ASSERT_TRUE(posts_.reaches(2));
    token_.unplug();
    ASSERT_TRUE(posts_.reaches(4));

    const auto all = posts_.all();
    EXPECT_EQ(all[0].name, HIDDeviceConnected);
    EXPECT_EQ(all[0].device.reportSize, 8U);
    EXPECT_EQ(all[1].name, HIDDeviceConnected);
    EXPECT_EQ(all[1].device.reportSize, 64U);
    std::set<std::string> gone;
    for (const auto& post : all) {
        EXPECT_EQ(post.thread, thread_.get_id());
        EXPECT_EQ(post.device.vendorId, 0x1050);
        if (post.name == HIDDeviceDisconnected)
            gone.insert(post.device.id);
    }
    EXPECT_EQ(gone, (std::set<std::string>{all[0].device.id, all[1].device.id}));
}

TEST_F(HIDDeviceMonitorTest, TheFirstTokenIsWholeAlsoWhenItIsPulledOutWhileItIsLookedAt)
{
    for (const auto first : {lab::TokenInterface::keyboard, lab::TokenInterface::fido}) {
        isHeldUp_ = true;
        lab::VirtualToken token(bed_, {});
        HIDDeviceMonitor monitor({{0x1050, 0x0407}}, 64);
        std::thread thread([&monitor] { EXPECT_FALSE(monitor.start()); });
        const auto before = posts_.all().size();
        token.plugIn(first);
        ASSERT_TRUE(posts_.reaches(before + 1));
        token.plugIn();
        token.unplug();
        isHeldUp_ = false;
        isHeldUp_.notify_all();
        ASSERT_TRUE(posts_.reaches(before + 4));
        const auto all = posts_.all();
        EXPECT_EQ(std::count_if(
                      all.begin() + static_cast<std::ptrdiff_t>(before), all.end(),
                      [](const Post& post) { return post.name == HIDDeviceConnected && post.device.reportSize == 64; }),
                  1);
        monitor.stop();
        thread.join();
    }
}

TEST_F(HIDDeviceMonitorTest, ForeignDevicesAreNotPosted)
{
    lab::TokenProfile foreign;
    foreign.productId = 0x0120;
    lab::VirtualToken foreignToken(bed_, foreign);
    foreign.productId = 0x0407;
    foreign.vendorId = 0x1051;
    lab::VirtualToken foreignVendor(bed_, foreign);
    start();
    foreignToken.plugIn();
    foreignVendor.plugIn();
    foreignToken.unplug();
    token_.plugIn();
    ASSERT_TRUE(posts_.reaches(2));
    EXPECT_EQ(posts_.all().size(), 2U);
    EXPECT_EQ(posts_.all().front().device.productId, 0x0407);
    EXPECT_EQ(posts_.all().front().device.vendorId, 0x1050);
}

TEST_F(HIDDeviceMonitorTest, StopEndsTheLoopAndEveryLaterStart)
{
    start();
    token_.plugIn();
    ASSERT_TRUE(posts_.reaches(2));
    monitor_.stop();
    thread_.join();
    EXPECT_FALSE(ended_);
    EXPECT_FALSE(monitor_.start());
}

} // namespace
} // namespace vantro
