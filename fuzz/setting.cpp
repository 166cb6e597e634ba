#include "Fuzzer.h"

#include <string>

#include "VantroStandaloneSetting/SettingText.h"

/// A valid document that was written reads as the same document.
void vantro::fuzz::look(std::string_view bytes)
{
    const auto parsed = XML::parse(bytes);
    const auto setting = readSetting(parsed);
    const std::string written = serialised(setting, ForeignContent(parsed));
    if (!setting.isValid)
        return;
    const auto again = XML::parse(written);
    expect(readSetting(again) == setting && serialised(setting, ForeignContent(again)) == written);
}
