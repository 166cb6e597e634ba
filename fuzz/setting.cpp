#include "Fuzzer.h"

#include <string>

#include "VantroStandaloneSetting/VantroStandaloneSetting.h"

/// A valid document that was written reads as the same document.
void vantro::fuzz::look(std::string_view bytes)
{
    const VantroStandaloneSetting setting(XML::parse(bytes));
    const std::string written = serialised(setting);
    if (!setting.isValid())
        return;
    const VantroStandaloneSetting again(XML::parse(written));
    expect(again.isValid() && serialised(again) == written);
}
