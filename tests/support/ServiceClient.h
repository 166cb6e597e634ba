#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <sdbus-c++/sdbus-c++.h>

#include "VantroStandaloneXPCSupport/VantroStandaloneServiceProtocol.h"

namespace vantro::tests {

/// Calls the service over a connection of its own and waits for the answer. An error reply is thrown as sdbus::Error.
/// One thread at a time.
class ServiceClient
{
  public:
    std::uint64_t getSerial() { return call<std::uint64_t>("GetSerial"); }
    bool createCRSettingFile(std::uint64_t serial) { return call<bool>("CreateCRSettingFile", serial); }
    bool removeCRSettingFile(std::uint64_t serial) { return call<bool>("RemoveCRSettingFile", serial); }
    bool validate(std::uint64_t serial) { return call<bool>("Validate", serial); }
    bool savePamSetting(const std::vector<std::uint8_t>& setting) { return call<bool>("SavePamSetting", setting); }
    bool removePamSetting(const std::vector<std::uint8_t>& setting) { return call<bool>("RemovePamSetting", setting); }

    std::string lastFailure() { return callOn<std::string>(diagnosisInterface, "LastFailure"); }

  private:
    template <class Value, class... Arguments>
    Value call(const std::string& method, const Arguments&... arguments)
    {
        return callOn<Value>(label, method, arguments...);
    }

    template <class Value, class... Arguments>
    Value callOn(const char* where, const std::string& method, const Arguments&... arguments)
    {
        Value value = {};
        proxy_->callMethod(method)
            .onInterface(where)
            .withTimeout(std::chrono::seconds(60))
            .withArguments(arguments...)
            .storeResultsTo(value);
        return value;
    }

    std::unique_ptr<sdbus::IConnection> connection_ = sdbus::createSystemBusConnection();
    std::unique_ptr<sdbus::IProxy> proxy_ = sdbus::createProxy(*connection_, label, serviceObjectPath);
};

} // namespace vantro::tests
