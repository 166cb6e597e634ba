#pragma once

#include <string_view>

namespace vantro {

/// Why a PAM service's text is not changed.
enum class PamFailure
{
    /// libpam takes a carriage return for a part of the last word.
    CarriageReturn,
    ZeroByte,
    LineTooLong,
    StrayContinuation,
    NamelessEntry,
    SeveralEntries,
    EntryInsideJump,
    JumpSpansInclude,
    IncluderUnreadable
};

/// For the log: what is wrong and what to do.
[[nodiscard]] std::string_view textOf(PamFailure failure);

} // namespace vantro
