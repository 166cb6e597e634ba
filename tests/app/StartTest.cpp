// The start sequence of the shared data set, and what it makes of tokens that come and go.

#include <chrono>
#include <filesystem>
#include <sys/stat.h>

#include <unistd.h>

#include "AppDelegate.h"
#include "ApplicationVersion.h"
#include "app/AppFixture.h"
#include "foundation/OperatingSystem.h"
#include "usb/HIDDeviceMonitor.h"

namespace vantro::tests {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::StartsWith;

class Start : public AppFixture
{
  protected:
    /// The start sequence's records, but for those of the user list, which another thread writes.
    std::vector<std::string> startRecords()
    {
        dataSet();
        const auto isUserList = [](const std::string& record) { return record.ends_with("the user list."); };
        EXPECT_TRUE(spinUntil([&] {
            const auto all = log("AppDataSet");
            return std::count_if(all.begin(), all.end(), isUserList) == 2;
        }));
        auto records = log("AppDataSet");
        std::erase_if(records, isUserList);
        return records;
    }
    [[nodiscard]] mode_t mode() const
    {
        struct stat status = {};
        ::stat(prefix.settingsDocument().c_str(), &status);
        return status.st_mode & 07777U;
    }
    void storeWithMode(mode_t mode)
    {
        store({.users = {{"adam", {1}}}});
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
                            "applicationDidFinishLaunching(_:) OS: " + ProcessInfo::operatingSystemVersionString(),
                            "applicationShouldTerminateAfterLastWindowClosed(_:) Close application."));
    EXPECT_EQ(windowTitleWithVersion(), "Vantro Standalone (Version 1.0.0)");
}

TEST_F(Start, LeavesAnothersDocumentAsItIs)
{
    storeWithMode(0644);
    if (::chown(prefix.settingsDocument().c_str(), 1802, 100) != 0)
        GTEST_SKIP() << "only root can give a file away";
    EXPECT_THAT(startRecords(), ElementsAre("init() Loaded setting file.", connection));
    EXPECT_EQ(mode(), 0644U);
}

TEST_F(Start, LeavesADocumentOfNobodyAsItIs)
{
    storeWithMode(0644);
    if (::chown(prefix.settingsDocument().c_str(), 54321, 100) != 0)
        GTEST_SKIP() << "only root can give a file away";
    EXPECT_THAT(startRecords(), ElementsAre("init() Loaded setting file.", connection));
    EXPECT_EQ(mode(), 0644U);
}

TEST_F(Start, GoesOnWithoutAFolder)
{
    std::filesystem::remove(prefix.settingsFolder());
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
    /// What the data set told others and the log, and how it stands, since the last call.
    struct Told
    {
        std::vector<std::string> notifications;
        std::int64_t count;
        std::optional<std::uint64_t> serial;
        std::vector<std::string> records;
    };

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
    /// What `work` on the monitor's thread brings about.
    void expect(const std::function<void()>& work, const Told& told)
    {
        onMonitorThread(work);
        EXPECT_EQ(notifications_, told.notifications);
        EXPECT_EQ(dataSet().connectedYubiKeyCount(), told.count);
        EXPECT_EQ(dataSet().connectedYubiKeySerial(), told.serial);
        EXPECT_THAT(log("AppDataSet"), ElementsAreArray(told.records));
        notifications_.clear();
        forgetLog();
    }
    static void disconnectTwice()
    {
        postDisconnected();
        postDisconnected();
    }

  private:
    const std::thread::id mainThread_ = std::this_thread::get_id();
    std::vector<std::string> notifications_;
    std::vector<Observation> observations_;
};

std::string counted(int count)
{
    return "connectedYubiKeyCount Connected YubiKey count: " + std::to_string(count);
}

std::string arrived(const std::string& serial)
{
    return "onDeviceConnected(notification:) Connected YubiKey [Serial = " + serial + "].";
}

constexpr auto notified = "onDeviceConnected(notification:) YubiKey connection notification";
constexpr auto notifiedMany = "onDeviceConnected(notification:) Multiple connection notification for YubiKey.";

TEST_F(Tokens, ComeAndGo)
{
    // The handler waits for the serial.
    service->script("GetSerial", {{std::uint64_t{11}, std::chrono::milliseconds(100)},
                                  {std::uint64_t{18446744073709551615U}},
                                  {std::uint64_t{0}}});
    const auto connect = [] { postConnected(64); };
    // Other interfaces of a token, and what is no device at all, are none of its business.
    expect(
        [] {
            for (const std::size_t size : {8U, 63U, 65U, 0U})
                postConnected(size);
            NotificationCenter::defaultCenter().post(HIDDeviceConnected);
            NotificationCenter::defaultCenter().post(HIDDeviceConnected, std::string("token"));
        },
        {{}, 0, {}, {}});
    EXPECT_THAT(service->methods(), testing::IsEmpty());

    expect(connect, {{"connected_yubikey"}, 1, 11, {arrived("11"), counted(1), notified}});
    expect(connect, {{"connected_yubikey", "multiple_connected_YubiKey"},
                     2,
                     18446744073709551615U,
                     {arrived("18446744073709551615"), counted(2), notified, notifiedMany}});
    // A token that tells no serial is counted and leaves the serial alone.
    expect(connect,
           {{},
            3,
            18446744073709551615U,
            {arrived("0"), counted(3), "warning onDeviceConnected(notification:) Serial is nil or 0. [Optional(0)]"}});

    // Every second disconnection counts, whoever's it is.
    expect([] { postDisconnected(); }, {{}, 3, 18446744073709551615U, {}});
    expect([] { postDisconnected(); },
           {{"disconnected_yubikey"},
            2,
            {},
            {"onDeviceDisconnected() Disconnected YubiKey [Serial = 18446744073709551615].", counted(2)}});
    for (const int count : {1, 0, -1})
        expect(disconnectTwice,
               {{"disconnected_yubikey"}, count, {}, {"onDeviceDisconnected() Disconnected YubiKey.", counted(count)}});
}

TEST_F(Tokens, ARequestThatFailsEndsTheWaitAtOnce)
{
    const std::string unknown = "warning onDeviceConnected(notification:) Serial is nil or 0. [nil]";
    const std::string refused = "error connectionService() Connection Error : The request was refused.";
    service->script("GetSerial", {{ScriptedService::Refusal()}});
    expect([] { postConnected(64); },
           {{},
            1,
            {},
            {refused, "error connectionService() com.vantro.Standalone1.Error.Refused: The request was refused.",
             counted(1), unknown}});
    service->script("GetSerial", {{ScriptedService::Silence()}});
    // The service dies while it is asked.
    onMonitorThread([this] {
        std::thread killer([this] {
            EXPECT_TRUE(waitUntil([this] { return service->methods().size() == 2; }));
            service.reset();
        });
        postConnected(64);
        killer.join();
    });
    auto records = log("AppDataSet");
    EXPECT_THAT(records, testing::Contains("error connectionService() Connection has been interrupted."));
    EXPECT_EQ(records.back(), unknown);
    EXPECT_EQ(dataSet().connectedYubiKeyCount(), 2);

    // The next one goes the same way.
    service.emplace();
    service->script("GetSerial", {{std::uint64_t{7}}});
    onMonitorThread([] { postConnected(64); });
    EXPECT_EQ(dataSet().connectedYubiKeySerial(), 7U);
    bus.end();
    EXPECT_TRUE(spinUntil(
        [&] { return log("AppDataSet").back() == "error connectionService() Connection has been invalidated."; }));
    onMonitorThread([] { postConnected(64); });
    EXPECT_EQ(log("AppDataSet").back(), unknown);
}

} // namespace
} // namespace vantro::tests
