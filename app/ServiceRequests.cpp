#include "ServiceRequests.h"

#include <utility>

#include "ServiceRequest.h"
#include "VantroStandaloneNames.h"
#include "appkit/BusyPointer.h"
#include "foundation/OperatingSystem.h"

namespace vantro {

using namespace std::chrono_literals;

std::chrono::milliseconds serviceReplyLimit = 5s;

namespace {

/// One request whose answer is waited for; silence is failure.
template <class Send>
bool askService(ServiceFailure* failure, const Send& send)
{
    const BusyPointer busyPointer;
    const ServiceRequest<bool> request(send);
    const bool isSuccess = request.waitFor(serviceReplyLimit).value_or(false);
    if (!isSuccess && failure != nullptr)
        *failure = request.failure(serviceReplyLimit);
    return isSuccess;
}

std::string asText(bool value)
{
    return value ? "true" : "false";
}

} // namespace

bool updatePamSetting(const std::string& fileName, ControlFlag controlFlag, ServiceFailure* failure)
{
    const PamSetting setting{fileName, ModuleInterface::Auth, controlFlag, std::string(names::pamModule)};
    const auto archive = setting.archived();
    if (!archive)
        return false;
    return askService(failure, [&](ServiceProxy& service, auto reply) {
        service.savePamSettingWithSetting(*archive, std::move(reply));
    });
}

bool createCRSettingFile(std::uint64_t serial, ServiceFailure* failure)
{
    return askService(failure, [&](ServiceProxy& service, auto reply) {
        service.createCRSettingFileWithSerialNo(serial, std::move(reply));
    });
}

bool PamUpdateResults::isSuccess() const
{
    const bool isStrict = ProcessInfo::isOperatingSystemAtLeast({14, 0, 0});
    return authorization && screensaver && (screensaverNew || !isStrict);
}

std::string PamUpdateResults::logText() const
{
    return "Update PAM setting. [Success. authorization: " + asText(authorization) +
           ", screensaver: " + asText(screensaver) + ", screensaver_new: " + asText(screensaverNew) + "]";
}

PamUpdateResults updateAllPamSettings(ControlFlag controlFlag)
{
    PamUpdateResults results;
    auto update = [&results, controlFlag, failed = false](std::string_view fileName) mutable {
        ServiceFailure failure;
        const bool isSuccess = updatePamSetting(std::string(fileName), controlFlag, &failure);
        if (!isSuccess && !std::exchange(failed, true))
            results.failure = failure;
        return isSuccess;
    };
    results.authorization = update(names::pamServices[0]);
    results.screensaver = update(names::pamServices[1]);
    results.screensaverNew = update(names::pamServices[2]);
    return results;
}

} // namespace vantro
