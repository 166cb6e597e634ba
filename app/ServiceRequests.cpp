#include "ServiceRequests.h"

#include <functional>
#include <utility>

#include "AppDataSet.h"
#include "appkit/BusyPointer.h"
#include "foundation/OperatingSystem.h"
#include "foundation/ReplyCell.h"

namespace vantro {

using namespace std::chrono_literals;

std::chrono::milliseconds serviceReplyLimit = 5s;

namespace {

constexpr auto moduleName = "pam_vantro_standalone.so";

using SuccessReply = VantroStandaloneServiceProtocol::SuccessReply;

/// One request whose answer is waited for; silence is failure.
bool askService(const std::function<void(VantroStandaloneServiceProtocol&, SuccessReply)>& send)
{
    const BusyPointer busyPointer;
    const ReplyCell<bool> cell;
    send(AppDataSet::shared().service(), cell.sender());
    return cell.waitFor(serviceReplyLimit).value_or(false);
}

std::string asText(bool value)
{
    return value ? "true" : "false";
}

} // namespace

bool updatePamSetting(const std::string& fileName, ControlFlag controlFlag)
{
    const PamSetting setting{fileName, ModuleInterface::Auth, controlFlag, moduleName};
    const auto archive = setting.archived();
    if (!archive)
        return false;
    return askService([&](VantroStandaloneServiceProtocol& service, SuccessReply reply) {
        service.savePamSettingWithSetting(*archive, std::move(reply));
    });
}

bool createCRSettingFile(std::uint64_t serial)
{
    return askService([&](VantroStandaloneServiceProtocol& service, SuccessReply reply) {
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
    results.authorization = updatePamSetting("authorization", controlFlag);
    results.screensaver = updatePamSetting("screensaver", controlFlag);
    results.screensaverNew = updatePamSetting("screensaver_new", controlFlag);
    return results;
}

} // namespace vantro
