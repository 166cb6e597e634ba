#include "foundation/OperatingSystem.h"

#include <limits>

namespace vantro {
namespace {

OperatingSystemVersion& currentVersion()
{
    static OperatingSystemVersion version{std::numeric_limits<int>::max(), 0, 0};
    return version;
}

} // namespace

bool ProcessInfo::isOperatingSystemAtLeast(const OperatingSystemVersion& version)
{
    return currentVersion() >= version;
}

void ProcessInfo::setOperatingSystemVersion(const OperatingSystemVersion& version)
{
    currentVersion() = version;
}

} // namespace vantro
