// The start sequence of the shared data set, and what it makes of tokens that come and go.

#include <chrono>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <thread>
#include <utility>

#include <unistd.h>

#include "AppDelegate.h"
#include "ApplicationVersion.h"
#include "app/AppFixture.h"
#include "support/WaitUntil.h"
#include "usb/HIDDeviceMonitor.h"

namespace vantro::tests {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

class Start : public AppFixture
{
  protected:
    /// The start sequence's records, but for those of the user list, which another thread writes.
    std::vector<std::string> startRecords()
    {
        dataSet();
        std::vector<std::string> records;
        EXPECT_TRUE(spinUntil([&] {
            records = log("AppDataSet");
            return std::erase_if(records, [](const auto& record) { return record.ends_with("the user list."); }) == 2;
        }));
        return records;
    }
    [[nodiscard]] mode_t mode() const { return modeOf(prefix.settingsDocument()); }
    void storeWithMode(mode_t mode)
    {
        prefix.store({.users = {{"adam", {1}}}});
        ::chmod(prefix.settingsDocument().c_str(), mode);
    }
    static constexpr auto connection = "connectionService() Connection serivce.";
};

TEST_F(Start, MakesADocumentWhereThereIsNone)
{
    EXPECT_THAT(startRecords(), ElementsAre("init() Create setting file.", connection));
    EXPECT_EQ(takeWrites(), 1);
    EXPECT_EQ(stored(), VantroStandaloneSetting());
    EXPECT_EQ(mode(), 0666U);
}

TEST_F(Start, LoadsTheDocumentAndOpensItForAll)
{
    storeWithMode(0600);
    EXPECT_THAT(startRecords(), ElementsAre("init() Loaded setting file.", connection));
    EXPECT_EQ(dataSet().vantroStandaloneSetting, (VantroStandaloneSetting{.users = {{"adam", {1}}}}));
    EXPECT_EQ(takeWrites(), 0);
    EXPECT_EQ(mode(), 0666U);

    // The launch record comes after, and says what the window titles say.
    AppDelegate delegate;
    delegate.applicationDidFinishLaunching();
    EXPECT_TRUE(delegate.applicationShouldTerminateAfterLastWindowClosed());
    EXPECT_THAT(log("AppDelegate"),
                ElementsAre("applicationDidFinishLaunching(_:) Launched Application.",
                            "applicationDidFinishLaunching(_:) AppVersion: 1.0.0",
                            "applicationDidFinishLaunching(_:) OS: " + OS_VERSION(),
                            "applicationShouldTerminateAfterLastWindowClosed(_:) Close application."));
    EXPECT_NE(OS_VERSION(), "");
    EXPECT_EQ(windowTitleWithVersion(), "Vantro Standalone (Version 1.0.0)");
}

class StartWithADocumentOf : public Start, public testing::WithParamInterface<uid_t>
{
};

INSTANTIATE_TEST_SUITE_P(AnotherAndNobody, StartWithADocumentOf, testing::Values(1802, 54321));

TEST_P(StartWithADocumentOf, LeavesItAsItIs)
{
    storeWithMode(0644);
    if (::chown(prefix.settingsDocument().c_str(), GetParam(), 100) != 0)
        GTEST_SKIP() << "only root can give a file away";
    EXPECT_THAT(startRecords(), ElementsAre("init() Loaded setting file.", connection));
    EXPECT_EQ(mode(), 0644U);
}

TEST_F(Start, GoesOnWithoutAFolder)
{
    std::filesystem::remove(prefix.settings());
    auto records = startRecords();
    ASSERT_EQ(records.size(), 4U);
    EXPECT_EQ(records[0], "init() Create setting file.");
    EXPECT_EQ(records[1], "warning init() Failed to change file permissions.");
    EXPECT_THAT(records[2], StartsWith("warning init() error: "));
    EXPECT_EQ(records[3], connection);
}

class Tokens : public AppFixture
{
  protected:
    Tokens()
    {
        dataSet();
        for (const auto& name : {ConnectedYubiKey, DisconnectedYubiKey, MultipleConnectedYubiKey})
            observations_.push_back(
                NotificationCenter::defaultCenter().addObserver(name, [this](const Notification& notification) {
                    EXPECT_FALSE(notification.object.has_value());
                    EXPECT_NE(std::this_thread::get_id(), mainThread_);
                    notifications_.push_back(notification.name);
                }));
        EXPECT_TRUE(spinUntil([&] { return log("AppDataSet").size() == 4; }));
        forgetLog();
    }
    /// What `work` on the monitor's thread makes the data set tell others, and how it stands then.
    void expect(const std::function<void()>& work, const std::vector<std::string>& notifications, std::int64_t count,
                std::optional<std::uint64_t> serial)
    {
        onMonitorThread(work);
        EXPECT_EQ(std::exchange(notifications_, {}), notifications);
        EXPECT_EQ(dataSet().connectedYubiKeyCount(), count);
        EXPECT_EQ(dataSet().connectedYubiKeySerial(), serial);
    }

  private:
    const std::thread::id mainThread_ = std::this_thread::get_id();
    std::vector<std::string> notifications_;
    std::vector<Observation> observations_;
};

TEST_F(Tokens, ComeAndGo)
{
    // The handler waits for the serial.
    service->script("GetSerial", {{std::uint64_t{11}, std::chrono::milliseconds(100)},
                                  {std::uint64_t{18446744073709551615U}},
                                  {std::uint64_t{0}}});
    const auto connect = [] { postConnected(64); };
    const auto disconnect = [] { postDisconnected(); };
    // Other interfaces of a token, and what is no device at all, are none of its business.
    const auto others = [] {
        for (const std::size_t size : {8U, 63U, 65U, 0U})
            postConnected(size);
        NotificationCenter::defaultCenter().post(HIDDeviceConnected);
        NotificationCenter::defaultCenter().post(HIDDeviceConnected, std::string("token"));
    };
    expect(others, {}, 0, {});
    EXPECT_THAT(service->methods(), testing::IsEmpty());
    expect(connect, {"connected_yubikey"}, 1, 11);
    expect(connect, {"connected_yubikey", "multiple_connected_YubiKey"}, 2, 18446744073709551615U);
    // A token that tells no serial is counted and leaves the serial alone.
    expect(connect, {}, 3, 18446744073709551615U);
    // Every second disconnection counts, whoever's it is, even below 0.
    for (const int count : {3, 2, 1, 0}) {
        expect(disconnect, {}, count, count == 3 ? std::optional(18446744073709551615U) : std::nullopt);
        expect(disconnect, {"disconnected_yubikey"}, count - 1, {});
    }
    expectRecorded("tokens", "AppDataSet");
}

TEST_F(Tokens, ARequestThatFailsEndsTheWaitAtOnce)
{
    const auto connect = [] { postConnected(64); };
    service->script("GetSerial", {{ScriptedService::Refusal()}});
    expect(connect, {}, 1, {});
    expectRecorded("token-refused", "AppDataSet");
    // The service dies while it is asked.
    service->script("GetSerial", {{ScriptedService::Silence()}});
    std::thread killer([this] {
        EXPECT_TRUE(waitUntil([this] { return service->methods().size() == 2; }));
        service.reset();
    });
    expect(connect, {}, 2, {});
    killer.join();
    EXPECT_THAT(log("AppDataSet"), testing::Contains("error connectionService() Connection has been interrupted."));

    // The next one goes the same way.
    service.emplace();
    service->script("GetSerial", {{std::uint64_t{7}}});
    expect(connect, {"connected_yubikey", "multiple_connected_YubiKey"}, 3, 7);
    bus.end();
    EXPECT_TRUE(spinUntil(
        [&] { return log("AppDataSet").back() == "error connectionService() Connection has been invalidated."; }));
    expect(connect, {}, 4, 7);
}

} // namespace
} // namespace vantro::tests
