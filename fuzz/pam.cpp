#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "VantroStandaloneSetting/PamSetting.h"

/// Any bytes are read without harm, and an archive that is taken is the one that its object is written as.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace vantro;
    const ArchiveData archive(data, data + size);
    const auto setting = PamSetting::unarchived(archive);
    if (setting && setting->archived() != archive)
        std::abort();
    return 0;
}
