#include "bus/Authorisation.h"

#include <algorithm>
#include <array>
#include <unistd.h>
#include <utility>

#include "VantroStandaloneNames.h"
#include "VantroStandaloneXPCSupport/VantroStandaloneServiceProtocol.h"
#include "foundation/Identity.h"

namespace vantro::service {
namespace {

constexpr const char* administratorsGroup = "sudo";

constexpr std::array<std::pair<std::string_view, Requirement>, 8> requirements = {{
    {service_method::getSerial, Requirement::Administrator},
    {service_method::createCRSettingFile, Requirement::Administrator},
    {service_method::removeCRSettingFile, Requirement::Administrator},
    {service_method::validate, Requirement::Administrator},
    {service_method::savePamSetting, Requirement::Administrator},
    {service_method::removePamSetting, Requirement::Administrator},
    {service_method::lastFailure, Requirement::Administrator},
    {names::sign_in::authenticate, Requirement::Account},
}};

bool isAdministrator(const Caller& caller)
{
    if (caller.userId == 0 || caller.userId == ::geteuid())
        return true;
    const auto administrators = groupId(administratorsGroup);
    return administrators &&
           std::find(caller.groupIds.begin(), caller.groupIds.end(), *administrators) != caller.groupIds.end();
}

} // namespace

std::optional<Requirement> requirementOf(std::string_view method)
{
    for (const auto& [name, requirement] : requirements)
        if (name == method)
            return requirement;
    return std::nullopt;
}

bool mayCall(std::string_view method, const Caller& caller)
{
    const auto requirement = requirementOf(method);
    return requirement == Requirement::Administrator && isAdministrator(caller);
}

bool maySignIn(const Caller& caller, const std::string& account)
{
    return caller.userId == 0 || caller.userId == ::geteuid() || userId(account) == caller.userId;
}

} // namespace vantro::service
