#pragma once

#include <string>

#include "VantroStandaloneSetting/ForeignContent.h"
#include "VantroStandaloneSetting/VantroStandaloneSetting.h"
#include "foundation/XML.h"

namespace vantro {

/// The settings document of a parsed file. What can't be read is left at its default and makes it invalid.
[[nodiscard]] VantroStandaloneSetting readSetting(const XMLAccessor& accessor);

/// The settings document of a parsed file together with what is foreign in it; nothing is in one that is invalid.
struct SettingWithForeign
{
    VantroStandaloneSetting setting;
    ForeignContent foreign;
};
[[nodiscard]] SettingWithForeign readSettingWithForeign(const XMLAccessor& accessor);

/// The document's file as text: one element a key, serials in plain decimal, and behind an element's known content what
/// is foreign there.
[[nodiscard]] std::string serialised(const VantroStandaloneSetting& setting, const ForeignContent& foreign = {});

/// The newest format version that this program reads, and the one that it writes.
inline constexpr unsigned int settingFormatVersion = 1;

} // namespace vantro
