#include "support/TemporaryPrefix.h"

#include <cstdlib>
#include <stdexcept>

#include "foundation/Bundle.h"

namespace vantro::tests {

TemporaryPrefix::TemporaryPrefix()
{
    if (!Bundle::setMainPrefix(path()))
        throw std::logic_error("the main bundle was made before the temporary prefix");
    ::setenv("XDG_STATE_HOME", (path() / "state").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", configHome().c_str(), 1);
}

} // namespace vantro::tests
