#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "VantroStandaloneSetting/VantroStandaloneSetting.h"

/// Any bytes are read without harm, and a valid document that was written reads as the same document.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace vantro;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const VantroStandaloneSetting setting(XML::parse(bytes));
    const std::string written = serialised(setting);
    if (!setting.isValid())
        return 0;
    const VantroStandaloneSetting again(XML::parse(written));
    if (!again.isValid() || serialised(again) != written)
        std::abort();
    return 0;
}
