#include "support/ServiceClient.h"

#include "VantroStandaloneXPCSupport/VantroStandaloneServiceProtocol.h"

namespace vantro::tests {

const char* const ServiceClient::interface = label;
const char* const ServiceClient::diagnosis = diagnosisInterface;

ServiceClient::ServiceClient()
    : connection_(sdbus::createSystemBusConnection()),
      proxy_(sdbus::createProxy(*connection_, label, serviceObjectPath))
{
}

} // namespace vantro::tests
