#pragma once

#include <compare> // IWYU pragma: keep, for the comparison below

namespace vantro {

/// A version of the operating system in the numbering that version tests use.
struct OperatingSystemVersion
{
    int major = 0;
    int minor = 0;
    int patch = 0;

    // NOLINTNEXTLINE(modernize-use-nullptr): takes the zero of the comparison that it makes for a pointer
    auto operator<=>(const OperatingSystemVersion&) const = default;
};

/// What the process can ask about the system that it runs on.
class ProcessInfo
{
  public:
    /// Whether the system is at least the given version. This system has no such numbering and counts as newer than
    /// every version that is asked for, unless setOperatingSystemVersion() has said otherwise.
    [[nodiscard]] static bool isOperatingSystemAtLeast(const OperatingSystemVersion& version);

    /// Makes the tests above answer for the given version, for the rules of older systems. Main thread.
    static void setOperatingSystemVersion(const OperatingSystemVersion& version);
};

} // namespace vantro
