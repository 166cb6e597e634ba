#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vantro {

/// What a monitor wants to know of a HID report descriptor.
struct ReportDescriptor
{
    /// The usage of the first top-level collection; 0 when it has none.
    std::uint16_t usagePage = 0;
    std::uint16_t usage = 0;
    /// The largest input report in bytes, without report id; 0 when there is none.
    std::size_t maximumInputReportSize = 0;
};

/// Reads the items of a report descriptor (Device Class Definition for HID 1.11, 6.2.2). Nothing when they are cut
/// short, pop more globals than were pushed, or describe a report beyond the kernel's own limit of 16 KiB.
[[nodiscard]] std::optional<ReportDescriptor> parseReportDescriptor(std::string_view bytes);

} // namespace vantro
