#include "Fuzzer.h"

#include <string>

#include "VantroStandaloneSetting/SettingText.h"

/// A valid document that was written reads as the same document.
void vantro::fuzz::look(std::string_view bytes)
{
    const auto [setting, foreign] = readSettingWithForeign(XML::parse(std::string(bytes)));
    const std::string written = serialised(setting, foreign);
    if (!setting.isValid)
        return;
    const auto again = readSettingWithForeign(XML::parse(written));
    expect(again.setting == setting && serialised(setting, again.foreign) == written);
}
