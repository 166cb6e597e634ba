#include "VantroStandalonePam/PamFailure.h"

namespace vantro {

std::string_view textOf(PamFailure failure)
{
    switch (failure) {
    case PamFailure::CarriageReturn:
        return "It has carriage returns, which libpam does not understand; give it plain line breaks.";
    case PamFailure::ZeroByte:
        return "It holds a zero byte; it is no text.";
    case PamFailure::LineTooLong:
        return "It has a line of more than 1023 bytes, which libpam cuts in two; shorten it.";
    case PamFailure::StrayContinuation:
        return "Its last line ends in a backslash, so that libpam reads none of it; complete the line.";
    case PamFailure::NamelessEntry:
        return "It has an entry without the name of what it includes or calls, which ends libpam; complete the line.";
    case PamFailure::SeveralEntries:
        return "It has more than one entry of the module; remove all but one.";
    case PamFailure::EntryInsideJump:
        return "The module's entry stands between a jump and its target; move it out of there.";
    case PamFailure::JumpSpansInclude:
        return "A service that includes it jumps over the include; move the include out of there.";
    case PamFailure::IncluderUnreadable:
        return "It, or a file that it includes, can't be read to its end, so that nobody knows what it jumps over; see "
               "that each of its lines and of its includes is complete and there.";
    }
    return "Unknown failure.";
}

} // namespace vantro
