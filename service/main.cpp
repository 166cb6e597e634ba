#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <poll.h>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <thread>

#include <sdbus-c++/sdbus-c++.h>

#include "LoggerManager/LoggerManager.h"
#include "VantroStandaloneSetting/SettingFile.h"
#include "VantroStandaloneXPCSupport/VantroStandaloneServiceProtocol.h"
#include "bus/Sessions.h"
#include "bus/SignInObject.h"
#include "bus/StandaloneObject.h"
#include "foundation/Bundle.h"
#include "foundation/FileDescriptor.h"
#include "foundation/WakeEvent.h"
#include "pam/PamStore.h"
#include "signin/AcceptedTokens.h"
#include "signin/ScreenLock.h"
#include "tokens/ChallengeResponse.h"
#include "tokens/RecordStore.h"
#include "tokens/RegisteredKeys.h"
#include "tokens/TokenRegistry.h"

namespace vantro::service {
namespace {

/// Beside the records, and so outside of the PAM services' folder, where every file is a service.
constexpr const char* pamBackupFolder = "pam-backup";

/// Leaves the connection's event loop when the process is told to end.
class SignalWatch
{
  public:
    /// To be made before every other thread, since those inherit which signals are held back.
    SignalWatch()
    {
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGTERM);
        sigaddset(&signals, SIGINT);
        ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
        signals_ = FileDescriptor(::signalfd(-1, &signals, SFD_CLOEXEC));
    }
    ~SignalWatch() { stop_.wake(); }
    SignalWatch(const SignalWatch&) = delete;
    SignalWatch& operator=(const SignalWatch&) = delete;

    void start(sdbus::IConnection& connection)
    {
        thread_ = std::jthread([this, &connection] {
            pollfd waits[] = {{signals_.get(), POLLIN, 0}, {stop_.fileDescriptor(), POLLIN, 0}};
            while (::poll(waits, std::size(waits), -1) < 0 && errno == EINTR) {
            }
            if ((waits[0].revents & POLLIN) != 0)
                connection.leaveEventLoop();
        });
    }

  private:
    WakeEvent stop_;
    FileDescriptor signals_;
    std::jthread thread_;
};

int run(const Logger& logger)
{
    constexpr const char* function = "run(_:)";
    const Bundle& bundle = Bundle::main();
    const std::filesystem::path records = bundle.string(bundle_key::challengeResponseFolder);
    const std::filesystem::path settings = bundle.string(bundle_key::settingsFolder);
    const std::filesystem::path signedIn = bundle.string(bundle_key::signedInFolder);
    const PamStore::Folders pamFolders = {bundle.string(bundle_key::pamServicesFolder),
                                          bundle.string(bundle_key::pamModulesFolder),
                                          records.parent_path() / pamBackupFolder};
    if (records.empty() || settings.empty() || signedIn.empty() || pamFolders.services.empty() ||
        pamFolders.modules.empty()) {
        logger.error("The information dictionary below " + bundle.resourceFolder().string() +
                         " can't be read or does not name the folders.",
                     function);
        return EXIT_FAILURE;
    }
    try {
        const auto connection = sdbus::createSystemBusConnection();
        SignalWatch signals;
        TokenRegistry registry(logger);
        RecordStore recordStore(records, logger);
        const RegisteredKeys registeredKeys(settings / SettingFile::fileName, recordStore);
        ChallengeResponse challengeResponse(registry, recordStore, registeredKeys, logger);
        PamStore pamStore(pamFolders, registeredKeys, logger);
        recordStore.removeUnfinished();
        pamStore.removeUnfinished();
        Sessions sessions(logger);
        ScreenLock screenLock(
            registry, registeredKeys, AcceptedTokens(signedIn, logger),
            [&sessions](uid_t user) { sessions.lock(user); }, logger);
        SignIn signIn(registry, challengeResponse, registeredKeys, screenLock, logger);
        const StandaloneObject object(*connection, challengeResponse, pamStore, logger);
        const SignInObject signInObject(*connection, signIn, logger);
        connection->requestName(label);
        signals.start(*connection);
        logger.info("Service " + bundle.string(bundle_key::shortVersion) + " started.", function);
        connection->enterEventLoop();
        logger.info("Service ends.", function);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        logger.error(std::string("The service can't go on: ") + error.what(), function);
        return EXIT_FAILURE;
    }
}

} // namespace
} // namespace vantro::service

int main()
{
    ::umask(077);
    const auto logger =
        vantro::LoggerManager::logger("VantroStandaloneService", vantro::LoggerManager::Destination::StandardError)
            .inFile("main");
    const int status = vantro::service::run(logger);
    logger.flush();
    return status;
}
