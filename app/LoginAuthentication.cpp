#include "LoginAuthentication.h"

#include <array>

#include "AppDataSet.h"
#include "ServiceRequest.h"
#include "appkit/BusyPointer.h"

namespace vantro {
namespace {

using namespace std::chrono_literals;

constexpr auto function = "authenticate()";

Logger authenticationLogger()
{
    return AppDataSet::shared().logger.inFile("LoginAuthentication");
}

} // namespace

std::chrono::milliseconds LoginAuthentication::validationLimit = 20s;

std::string LoginAuthentication::rawValue(AuthResult result)
{
    constexpr std::array names = {
        "Success", "CRFailure", "NotConnected", "MultipleConnected", "SerialAcquisitionError", "NotAdminYubiKey"};
    return names.at(static_cast<std::size_t>(result));
}

LoginAuthentication::AuthResult LoginAuthentication::authenticate(ServiceFailure* failure)
{
    authenticationLogger().info("Start login authentication.", function);
    const AuthResult result = check(failure);
    authenticationLogger().info("[Result: " + rawValue(result) + "]", function);
    return result;
}

LoginAuthentication::AuthResult LoginAuthentication::check(ServiceFailure* failure)
{
    auto& dataSet = AppDataSet::shared();
    const std::int64_t count = dataSet.connectedYubiKeyCount();
    // The count can fall below 0 when a token goes that was never counted in.
    if (count <= 0)
        return AuthResult::NotConnected;
    if (count >= 2)
        return AuthResult::MultipleConnected;

    const auto serial = dataSet.connectedYubiKeySerial();
    if (!serial)
        return AuthResult::SerialAcquisitionError;
    authenticationLogger().info("[Serial: " + std::to_string(*serial) + "]", function);
    if (!containsSerial(dataSet.vantroStandaloneSetting.adminSetting.adminKeys, *serial))
        return AuthResult::NotAdminYubiKey;

    const BusyPointer busyPointer;
    const ServiceRequest<bool> request(
        [&serial](ServiceProxy& service, auto reply) { service.validateWithSerialNo(*serial, std::move(reply)); });
    if (request.waitForReplyOrFailure(validationLimit).value_or(false))
        return AuthResult::Success;
    if (failure != nullptr)
        *failure = request.failure(validationLimit);
    return AuthResult::CRFailure;
}

} // namespace vantro
