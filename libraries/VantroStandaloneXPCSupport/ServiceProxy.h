#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "VantroStandaloneXPCSupport/VantroStandaloneServiceProtocol.h"
#include "xpc/NSXPCConnection.h"

namespace vantro {

/// The remote object proxy of a connection, as the service protocol. Keeps the connection alive. An error runs the
/// proxy's error handler and drops the reply block. Any thread.
class ServiceProxy : public VantroStandaloneServiceProtocol
{
  public:
    using ReasonReply = std::function<void(const std::string& reason)>;

    ServiceProxy(std::shared_ptr<NSXPCConnection> connection, NSXPCConnection::ErrorHandler onError);

    void getSerialWithReply(SerialReply reply) override;
    void createCRSettingFileWithSerialNo(std::uint64_t serial, SuccessReply reply) override;
    void removeCRSettingFileWithSerialNo(std::uint64_t serial, SuccessReply reply) override;
    void validateWithSerialNo(std::uint64_t serial, SuccessReply reply) override;
    void savePamSettingWithSetting(std::vector<std::uint8_t> setting, SuccessReply reply) override;
    void removePamSettingWithSetting(std::vector<std::uint8_t> setting, SuccessReply reply) override;

    /// Why the last request of this connection that was answered false or 0 was: one of failure_reason's words, or one
    /// that only the service knows. When that can't be told the reply block is destroyed without having run; the error
    /// handler does not hear of it, since a service need not know.
    void lastFailureWithReply(ReasonReply reply);

    /// A proxy of the same connection for one caller, whose own handler runs after this proxy's.
    [[nodiscard]] ServiceProxy withErrorHandler(NSXPCConnection::ErrorHandler onError) const;

  private:
    void sendForSuccess(const char* method, XPCArgument argument, SuccessReply reply);

    std::shared_ptr<NSXPCConnection> connection_;
    NSXPCConnection::ErrorHandler onError_;
};

} // namespace vantro
