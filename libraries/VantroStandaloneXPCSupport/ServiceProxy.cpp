#include "VantroStandaloneXPCSupport/ServiceProxy.h"

#include <utility>

namespace vantro {

ServiceProxy::ServiceProxy(std::shared_ptr<NSXPCConnection> connection, NSXPCConnection::ErrorHandler onError)
    : connection_(std::move(connection)), onError_(std::move(onError))
{
}

void ServiceProxy::sendForSuccess(const char* method, XPCArgument argument, SuccessReply reply)
{
    connection_->send(
        {label, method}, std::move(argument), XPCReplyType::Boolean,
        [reply = std::move(reply)](const XPCValue& value) { reply(std::get<bool>(value)); }, onError_);
}

void ServiceProxy::getSerialWithReply(SerialReply reply)
{
    connection_->send(
        {label, service_method::getSerial}, {}, XPCReplyType::UnsignedInteger,
        [reply = std::move(reply)](const XPCValue& value) { reply(std::get<std::uint64_t>(value)); }, onError_);
}

void ServiceProxy::createCRSettingFileWithSerialNo(std::uint64_t serial, SuccessReply reply)
{
    sendForSuccess(service_method::createCRSettingFile, serial, std::move(reply));
}

void ServiceProxy::removeCRSettingFileWithSerialNo(std::uint64_t serial, SuccessReply reply)
{
    sendForSuccess(service_method::removeCRSettingFile, serial, std::move(reply));
}

void ServiceProxy::validateWithSerialNo(std::uint64_t serial, SuccessReply reply)
{
    sendForSuccess(service_method::validate, serial, std::move(reply));
}

void ServiceProxy::savePamSettingWithSetting(std::vector<std::uint8_t> setting, SuccessReply reply)
{
    sendForSuccess(service_method::savePamSetting, std::move(setting), std::move(reply));
}

void ServiceProxy::removePamSettingWithSetting(std::vector<std::uint8_t> setting, SuccessReply reply)
{
    sendForSuccess(service_method::removePamSetting, std::move(setting), std::move(reply));
}

void ServiceProxy::lastFailureWithReply(ReasonReply reply)
{
    connection_->send(
        {diagnosisInterface, service_method::lastFailure}, {}, XPCReplyType::String,
        [reply = std::move(reply)](const XPCValue& value) { reply(std::get<std::string>(value)); },
        [](const NSError&) {});
}

ServiceProxy ServiceProxy::withErrorHandler(NSXPCConnection::ErrorHandler onError) const
{
    return {connection_, [own = onError_, onError = std::move(onError)](const NSError& error) {
                own(error);
                onError(error);
            }};
}

} // namespace vantro
