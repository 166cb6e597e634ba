#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include <sys/types.h>

namespace vantro::torture {

/// The calls that the preloaded library lets fail.
enum class Call
{
    Open,
    Read,
    Write,
    Sync,
    Rename,
    Unlink,
    ChangeMode,
    ChangeOwner,
    Lock,
    Status,
    MakeFolder,
    OpenFolder,
    ReadFolder,
    Close
};
inline constexpr std::size_t callCount = 14;

/// What happens to one operation, and what has happened. In memory that the driver shares with the process that carries
/// the operation out, so that it outlasts that process.
struct Plan
{
    /// Never 0; from the same number, the same calls of the operation fail in the same way.
    std::uint64_t random = 1;
    /// One call of so many fails; none for 0.
    unsigned int odds = 0;
    /// Which call fails, counted from 1, apart from those; 0 for none.
    unsigned int callOfFault = 0;
    /// The kind of call whose next one fails; callCount for none.
    std::size_t kindOfFault = callCount;
    /// At which of its calls the process is killed, counted from 1, a write in its middle; 0 for none.
    unsigned int callOfKill = 0;
    std::array<std::uint64_t, callCount> faults = {};
    /// How many of them may have the operation fail. An interrupted read or write, or one of less than it was asked
    /// for, only has to be repeated.
    std::uint64_t excuses = 0;
    /// The files and folders that were changed and have not reached the disk since.
    std::array<ino_t, 256> unsynced = {};
    std::size_t unsyncedCount = 0;
};

/// The preloaded library's side of one process.
struct Faults
{
    /// Whether the plan counts for this process at the moment. One thread.
    bool isArmed = false;
    Plan* plan = nullptr;
};

/// The name under which the preloaded library has its Faults.
inline constexpr const char* faultsSymbol = "vantroFaults";

} // namespace vantro::torture
