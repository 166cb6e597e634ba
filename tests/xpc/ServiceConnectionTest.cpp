// The connection to the service and the proxy on it, on a bus of the test's own.

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "VantroStandaloneXPCSupport/ServiceProxy.h"
#include "support/PlainBus.h"
#include "support/Recorder.h"
#include "support/ScriptedService.h"
#include "support/WaitUntil.h"

namespace vantro::tests {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

/// What a connection told its user: the reply's value, "error: NAME" or the handler's name.
struct Told : Recorder<std::string>
{
    void add(const std::string& text)
    {
        threads.add(std::this_thread::get_id());
        Recorder::add(text);
    }
    Recorder<std::thread::id> threads;
};

class ServiceConnection : public testing::Test
{
  protected:
    ServiceConnection()
    {
        connection = std::make_shared<NSXPCConnection>(label, serviceObjectPath);
        connection->resume();
        connection->setInvalidationHandler([this] { told.add("invalidated"); });
        connection->setInterruptionHandler([this] { told.add("interrupted"); });
        proxy = std::make_unique<ServiceProxy>(connection,
                                               [this](const NSError& error) { told.add("error: " + error.name); });
    }

    /// The code of the error of one more request; nothing when the proxy's own handler does not hear of it before.
    std::optional<NSXPCConnectionError> codeOfNext()
    {
        const std::size_t before = told.all().size();
        std::optional<NSXPCConnectionError> code;
        proxy
            ->withErrorHandler([&](const NSError& error) {
                if (told.all().size() > before)
                    code = error.code;
                told.add("handed on");
            })
            .validateWithSerialNo(7, tellSuccess());
        EXPECT_TRUE(told.reaches(before + 2));
        return code;
    }

    VantroStandaloneServiceProtocol::SuccessReply tellSuccess()
    {
        return [this](bool isSuccess) { told.add(isSuccess ? "true" : "false"); };
    }
    void getSerial()
    {
        proxy->getSerialWithReply([this](std::uint64_t serial) { told.add(std::to_string(serial)); });
    }
    void validate() { proxy->validateWithSerialNo(7, tellSuccess()); }
    void createFile() { proxy->createCRSettingFileWithSerialNo(7, tellSuccess()); }

    static constexpr auto noReply = "error: org.freedesktop.DBus.Error.NoReply";
    static constexpr auto unknown = "error: org.freedesktop.DBus.Error.ServiceUnknown";

    PlainBus bus;
    std::optional<ScriptedService> service{std::in_place};
    Told told;
    std::shared_ptr<NSXPCConnection> connection;
    std::unique_ptr<ServiceProxy> proxy;
};

TEST_F(ServiceConnection, EachRequestCarriesItsArgumentAndItsReply)
{
    constexpr auto largest = std::numeric_limits<std::uint64_t>::max();
    const PamSetting setting{"authorization", ModuleInterface::Auth, ControlFlag::Required, "pam_x.so"};
    service->script("GetSerial", {{largest}});
    service->script("RemoveCRSettingFile", {{false}});
    proxy->getSerialWithReply([this](std::uint64_t serial) { told.add(std::to_string(serial)); });
    proxy->createCRSettingFileWithSerialNo(largest, tellSuccess());
    proxy->removeCRSettingFileWithSerialNo(2, tellSuccess());
    proxy->validateWithSerialNo(3, tellSuccess());
    proxy->savePamSettingWithSetting(setting.archived().value(), tellSuccess());
    proxy->removePamSettingWithSetting(setting.archived().value(), tellSuccess());
    service->script("LastFailure", {{std::string("jump")}});
    proxy->lastFailureWithReply([this](const std::string& reason) { told.add(reason); });

    ASSERT_TRUE(told.reaches(7));
    EXPECT_THAT(told.all(), ElementsAre("18446744073709551615", "true", "false", "true", "true", "true", "jump"));
    EXPECT_THAT(service->methods(), ElementsAre("GetSerial", "CreateCRSettingFile", "RemoveCRSettingFile", "Validate",
                                                "SavePamSetting", "RemovePamSetting"));
    EXPECT_EQ(service->calls()[1].serial, largest);
    EXPECT_EQ(service->calls()[2].serial, 2U);
    EXPECT_EQ(service->calls()[4].setting, setting);
    EXPECT_EQ(service->calls()[5].setting, setting);
}

TEST_F(ServiceConnection, WhatIsNoReplyOfTheTypeIsAnError)
{
    service->script("Validate", {{ScriptedService::Refusal()}});
    validate();
    ASSERT_TRUE(told.reaches(1));
    EXPECT_EQ(told.all().back(), "error: com.vantro.Standalone1.Error.Refused");

    // The bus library lets no service answer with a type that its method does not promise, so it is the expectation
    // that is wrong here.
    service->script("Validate", {{true}});
    const std::pair<const char*, XPCReplyType> mismatches[] = {{"Validate", XPCReplyType::UnsignedInteger},
                                                               {"GetSerial", XPCReplyType::Boolean}};
    for (const auto& [method, type] : mismatches) {
        const std::size_t before = told.all().size();
        const XPCArgument argument = type == XPCReplyType::Boolean ? XPCArgument() : XPCArgument(std::uint64_t{7});
        connection->send(
            {label, method}, argument, type, [this](const XPCValue&) { told.add("a value"); },
            [this](const NSError& error) { told.add("error: " + error.name); });
        ASSERT_TRUE(told.reaches(before + 1));
        EXPECT_THAT(told.all().back(), StartsWith("error: "));
    }
}

TEST_F(ServiceConnection, AnErrorHasACodeForWhatItsReceiverMayTellApart)
{
    using enum NSXPCConnectionError;
    const std::pair<const char*, NSXPCConnectionError> errors[] = {
        {"org.freedesktop.DBus.Error.AccessDenied", AccessDenied},
        {"org.freedesktop.DBus.Error.Spawn.ExecFailed", ServiceMissing},
        {"org.freedesktop.systemd1.UnitMasked", ServiceMissing},
        {"org.freedesktop.DBus.Error.NoReply", ReplyInvalid},
        {"com.vantro.Standalone1.Error.Refused", ReplyInvalid}};
    for (const auto& [name, code] : errors) {
        service->script("Validate", {{ScriptedService::Refusal{name}}});
        EXPECT_EQ(codeOfNext(), code) << name;
    }
    service.reset();
    ASSERT_TRUE(waitUntil([this] { return told.all().back() == "interrupted"; }));
    EXPECT_EQ(codeOfNext(), ServiceMissing);
    bus.end();
    ASSERT_TRUE(waitUntil([this] { return told.all().back() == "invalidated"; }));
    EXPECT_EQ(codeOfNext(), ConnectionInvalid);
}

TEST_F(ServiceConnection, AReplyBlockThatNeverRunsIsDestroyedAfterTheErrorHandler)
{
    service->script("Validate", {{ScriptedService::Refusal()}});
    std::shared_ptr<int> held(nullptr, [this](const int*) { told.add("destroyed"); });
    proxy->validateWithSerialNo(1, [held](bool) { ADD_FAILURE() << "a refused request was answered"; });
    held.reset();
    ASSERT_TRUE(told.reaches(2));
    EXPECT_THAT(told.all(), ElementsAre("error: com.vantro.Standalone1.Error.Refused", "destroyed"));
}

TEST_F(ServiceConnection, ASlowRequestDelaysNoOther)
{
    service->script("Validate", {{ScriptedService::Silence()}});
    service->script("GetSerial", {{std::uint64_t{5}, 300ms}});
    validate();
    getSerial();
    createFile();
    ASSERT_TRUE(told.reaches(2));
    EXPECT_THAT(told.all(), ElementsAre("true", "5"));
}

TEST_F(ServiceConnection, AServiceThatDiesInACallInterruptsAndTheSameProxyGoesOnOnceItIsBack)
{
    service->script("Validate", {{ScriptedService::Silence()}});
    validate();
    createFile();
    ASSERT_TRUE(told.reaches(1));
    service.reset();
    ASSERT_TRUE(told.reaches(3));
    EXPECT_THAT(told.all(), testing::UnorderedElementsAre("true", noReply, "interrupted"));
    for (const std::size_t count : {4U, 5U}) {
        validate();
        ASSERT_TRUE(told.reaches(count));
        EXPECT_EQ(told.all().back(), unknown);
    }
    service.emplace();
    getSerial();
    ASSERT_TRUE(told.reaches(6));
    EXPECT_EQ(told.all().back(), "1");
    const auto threads = told.threads.all();
    EXPECT_THAT(threads, testing::Each(threads.front())) << "all on the connection's own";
    EXPECT_NE(threads.front(), std::this_thread::get_id());
}

TEST_F(ServiceConnection, ABusThatDiesInvalidatesForGood)
{
    service->script("Validate", {{ScriptedService::Silence()}});
    validate();
    createFile();
    ASSERT_TRUE(told.reaches(1));
    bus.end();
    ASSERT_TRUE(told.reaches(3));
    EXPECT_THAT(told.all()[1], StartsWith("error: org.freedesktop.DBus.Error."));
    EXPECT_EQ(told.all()[2], "invalidated");

    const PlainBus another;
    const ScriptedService backAgain;
    createFile();
    getSerial();
    ASSERT_TRUE(told.reaches(5));
    EXPECT_THAT(told.all()[3], StartsWith("error: "));
    EXPECT_THAT(told.all()[4], StartsWith("error: "));
    EXPECT_THAT(backAgain.calls(), IsEmpty());
}

TEST_F(ServiceConnection, AConnectionMadeWithoutABusOpensWithTheFirstMessageThatFindsOne)
{
    service.reset();
    bus.end();
    connection = std::make_shared<NSXPCConnection>(label, serviceObjectPath);
    connection->resume();
    proxy = std::make_unique<ServiceProxy>(connection, [this](const NSError& error) {
        EXPECT_THAT(error.description(), HasSubstr(error.localizedDescription));
        told.add("late error: " + error.name);
    });
    const auto isLate = [](const std::string& text) { return text.starts_with("late error: "); };
    validate();
    ASSERT_TRUE(waitUntil([&] {
        const auto texts = told.all();
        return std::any_of(texts.begin(), texts.end(), isLate);
    }));

    const PlainBus another;
    service.emplace();
    validate();
    ASSERT_TRUE(waitUntil([&] { return told.all().back() == "true"; }));
}

TEST_F(ServiceConnection, DestructionDropsWhatIsUnderWay)
{
    service->script("Validate", {{ScriptedService::Silence()}});
    service->script("GetSerial", {{std::uint64_t{5}, 100ms}});
    auto alive = std::make_shared<bool>(true);
    // Ended with both under way, or wherever they have got to by then.
    for (int round = 0; round < 20; ++round) {
        service->forgetCalls();
        auto local = std::make_shared<NSXPCConnection>(label, serviceObjectPath);
        local->resume();
        ServiceProxy brief(local, [alive](const NSError&) {});
        local.reset();
        brief.validateWithSerialNo(1, [alive](bool) {});
        brief.getSerialWithReply([alive](std::uint64_t) {});
        if (round % 2 == 0) {
            ASSERT_TRUE(waitUntil([&] { return service->calls().size() >= 2; }));
        }
    }
    EXPECT_EQ(alive.use_count(), 1);
}

} // namespace
} // namespace vantro::tests
