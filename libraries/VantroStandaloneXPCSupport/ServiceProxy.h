#pragma once

#include <memory>

#include "VantroStandaloneXPCSupport/VantroStandaloneServiceProtocol.h"
#include "xpc/NSXPCConnection.h"

namespace vantro {

/// The remote object proxy of a connection, as the service protocol. Keeps the connection alive. An error runs the
/// proxy's error handler and drops the reply block. Any thread.
class ServiceProxy : public VantroStandaloneServiceProtocol
{
  public:
    ServiceProxy(std::shared_ptr<NSXPCConnection> connection, NSXPCConnection::ErrorHandler onError);

    void getSerialWithReply(SerialReply reply) override;
    void createCRSettingFileWithSerialNo(std::uint64_t serial, SuccessReply reply) override;
    void removeCRSettingFileWithSerialNo(std::uint64_t serial, SuccessReply reply) override;
    void validateWithSerialNo(std::uint64_t serial, SuccessReply reply) override;
    void savePamSettingWithSetting(std::vector<std::uint8_t> setting, SuccessReply reply) override;
    void removePamSettingWithSetting(std::vector<std::uint8_t> setting, SuccessReply reply) override;

  private:
    void sendForSuccess(const char* method, XPCArgument argument, SuccessReply reply);

    std::shared_ptr<NSXPCConnection> connection_;
    NSXPCConnection::ErrorHandler onError_;
};

} // namespace vantro
