// The privileged service, the real one on a private bus, with a virtual token plugged in.
//
// - A request that takes no work of its own: the reason of the client's last failure, of which there is none. It goes
// the
//   way of every other: who calls is found out, it is logged, and answered from a thread of its own. The floor: the
//   same client asks a program of the same bus library, on the same bus, that answers the same at once.
// - A sign-in: pam_authenticate() of the real libpam with the real module until it returns, and pam_end(). The floor:
//   this process has the token answer the same challenge and makes the check of its response, with nothing else.
//
// bench_service request|sign-in|NUMBER; with a number, a sign-in with that many keys in the document and as many
// accounts (10,000 at most).

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <iostream>
#include <linux/hidraw.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <stdexcept>
#include <string>
#include <sys/ioctl.h>
#include <utility>
#include <vector>

#include <sdbus-c++/sdbus-c++.h>

#include "Many.h"
#include "Measure.h"
#include "Program.h"
#include "emulation/Preload.h"
#include "module/ModuleFixture.h"
#include "support/Accounts.h"
#include "support/TestProcess.h"
#include "tokens/ChallengeRecord.h"
#include "usb/OtpFrame.h"

namespace {

using namespace vantro;

constexpr std::uint32_t ownSerial = 4'000'000'000;

/// A name that the bus lets programs of this account own beside the service's.
constexpr const char* echoName = "org.freedesktop.login1";
constexpr const char* echoPath = "/";
constexpr const char* echoInterface = "org.freedesktop.login1.Echo";
constexpr const char* echoArgument = "echo";

/// Answers requests until its standard input ends.
void echo()
{
    const auto connection = sdbus::createSystemBusConnection(echoName);
    const auto object = sdbus::createObject(*connection, echoPath);
    object->registerMethod("Echo").onInterface(echoInterface).implementedAs([] { return std::string(); });
    object->finishRegistration();
    connection->enterEventLoopAsync();
    std::cout << "ready\n" << std::flush;
    std::string line;
    std::getline(std::cin, line);
    connection->leaveEventLoop();
}

void require(bool condition)
{
    if (!condition)
        throw std::runtime_error("the service does not do what it is to do");
}

/// A keyboard interface of a token without anything around it.
class BareToken
{
  public:
    explicit BareToken(const std::string& deviceNode) : device_(::open(deviceNode.c_str(), O_RDWR | O_CLOEXEC)) {}

    [[nodiscard]] service::Response respond(const service::ChallengeRecord& record) const
    {
        otp::Payload payload = {};
        std::copy(record.challenge.begin(), record.challenge.end(), payload.begin());
        payload.back() = static_cast<std::uint8_t>(~record.challenge.back());
        for (const otp::Report& report : otp::reportsOf(otp::command::slotTwo, payload)) {
            while ((read().back() & otp::flag::write) != 0)
                continue;
            write(report);
        }
        otp::Report report = read();
        while ((report.back() & otp::flag::answer) == 0)
            report = read();
        std::vector<std::uint8_t> bytes;
        do {
            bytes.insert(bytes.end(), report.begin(), report.end() - 1);
            report = read();
        } while ((report.back() & otp::flag::sequence) != 0);
        otp::Report reset = {};
        reset.back() = otp::flag::reset;
        write(reset);
        service::Response response = {};
        std::copy_n(bytes.begin(), response.size(), response.begin());
        return response;
    }

  private:
    using Buffer = std::array<std::uint8_t, 1 + sizeof(otp::Report)>;

    [[nodiscard]] otp::Report read() const
    {
        Buffer buffer = {};
        require(::ioctl(device_.get(), HIDIOCGFEATURE(buffer.size()), buffer.data()) >= 0);
        otp::Report report = {};
        std::copy(buffer.begin() + 1, buffer.end(), report.begin());
        return report;
    }

    void write(const otp::Report& report) const
    {
        Buffer buffer = {};
        std::copy(report.begin(), report.end(), buffer.begin() + 1);
        require(::ioctl(device_.get(), HIDIOCSFEATURE(buffer.size()), buffer.data()) >= 0);
    }

    const FileDescriptor device_;
};

/// As the record's format has it.
bool isRight(const service::Response& response, const service::ChallengeRecord& record)
{
    std::array<std::uint8_t, 32> hash = {};
    constexpr int iterations = 100'000;
    return PKCS5_PBKDF2_HMAC(reinterpret_cast<const char*>(response.data()), static_cast<int>(response.size()),
                             record.salt.data(), static_cast<int>(record.salt.size()), iterations, EVP_sha256(),
                             static_cast<int>(hash.size()), hash.data()) == 1 &&
           CRYPTO_memcmp(hash.data(), record.hash.data(), hash.size()) == 0;
}

class Service : public tests::ModuleFixture
{
  public:
    Service() { token_.plugIn(); }

    double request()
    {
        return inMicroseconds([this] { require(client.lastFailure().empty()); });
    }

    double askEcho()
    {
        return inMicroseconds([this] {
            std::string reason;
            echo_->callMethod("Echo").onInterface(echoInterface).storeResultsTo(reason);
            require(reason.empty());
        });
    }

    void startEcho()
    {
        program_.emplace("/proc/self/exe", std::vector<std::string>{echoArgument});
        program_->readUntil("ready");
        connection_ = sdbus::createSystemBusConnection();
        echo_ = sdbus::createProxy(*connection_, echoName, echoPath);
    }

    /// Demands the token, in a document with that many keys beside it.
    void demandAmong(std::size_t keys)
    {
        demand({&token_});
        VantroStandaloneSetting setting = bench::documentOf(keys);
        setting.switchSetting.secureMode = true;
        setting.users.emplace_back("root", std::vector<YubiKey>{ownSerial});
        prefix.store(setting);
    }

    double signInOnce()
    {
        const std::string before = record();
        bench::Clock::time_point start;
        const auto result = signIn("wait=0", "root", {}, [&start](pam_handle_t*) { start = bench::Clock::now(); });
        const double milliseconds = bench::millisecondsSince(start);
        require(result.code == PAM_SUCCESS);
        // The token is free again when its record has been renewed.
        require(tests::waitUntil([&] { return record() != before; }));
        return milliseconds;
    }

    double checkBarely()
    {
        const auto content = service::ChallengeRecord::parsed(record());
        require(content.has_value());
        return bench::millisecondsOf([&] {
            const BareToken token(token_.deviceNode(lab::TokenInterface::keyboard));
            require(isRight(token.respond(*content), *content));
        });
    }

  private:
    void TestBody() override {}

    /// What one of many takes, where only a quarter is faster.
    template <class Work>
    static double inMicroseconds(const Work& work)
    {
        std::vector<double> milliseconds(200);
        std::generate(milliseconds.begin(), milliseconds.end(), [&work] { return bench::millisecondsOf(work); });
        return bench::lowerQuartile(std::move(milliseconds)) * 1000;
    }

    [[nodiscard]] std::string record() const { return tests::contentOf(recordOf(ownSerial)); }

    lab::VirtualToken token_{bed, tests::tokenOf(ownSerial)};
    std::optional<bench::Program> program_;
    std::unique_ptr<sdbus::IConnection> connection_;
    std::unique_ptr<sdbus::IProxy> echo_;
};

constexpr int rounds = 21;

void measureRequest()
{
    Service service;
    service.startEcho();
    bench::printRow("a service request",
                    bench::compareInTurns(
                        rounds, [&] { return service.request(); }, [&] { return service.askEcho(); }),
                    "us", 1.3);
}

void measureSignIn()
{
    Service service;
    service.demandAmong(0);
    bench::printRow("a sign-in with a token plugged in",
                    bench::compareInTurns(
                        rounds, [&] { return service.signInOnce(); }, [&] { return service.checkBarely(); }),
                    "ms", 1.3);
}

void measureGrowth(std::size_t count)
{
    Service service;
    service.demandAmong(count);
    bench::printGrowth("a sign-in", count, bench::measureRounds(rounds, [&] { return service.signInOnce(); }));
}

} // namespace

int main(int argc, char** argv)
{
    const std::string argument = argc > 1 ? argv[1] : "";
    const std::size_t count = std::strtoul(argument.c_str(), nullptr, 10);
    if (!lab::isUnderPreload() && count > 0)
        tests::replaceAccounts(bench::accountsOf("root", ::geteuid(), count));
    lab::reexecuteUnderPreload(argv,
                               count > 0 ? std::vector<std::string>{NSS_WRAPPER_LIBRARY} : std::vector<std::string>());
    if (argument == echoArgument)
        return bench::run(echo);
    const int result = bench::run([&argument, count] {
        if (count > 0)
            measureGrowth(count);
        else if (argument == "request")
            measureRequest();
        else
            measureSignIn();
    });
    tests::removeAccounts();
    tests::endTests(result);
}
