#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "VantroStandalonePam/PamFailure.h"

namespace vantro {

/// How far libpam gets with a service; each value is worse than the one before.
enum class PamReading
{
    Whole,
    /// It gives up where the text stops making sense, with an error.
    GivesUp,
    /// It crashes or runs for ever, and the program that wanted somebody to sign in with it.
    Breaks,
    /// This program can't tell: it can't read what libpam may be able to.
    Unknown
};

/// One logical line that holds more than a comment.
struct PamLine
{
    /// Where it begins, and where it ends behind its last line break.
    std::size_t begin = 0;
    std::size_t end = 0;
    /// Without its comment, in one.
    std::string text;
};

/// A PAM service's text cut into logical lines the way libpam 1.5.2 does, byte for byte: what it makes of overlong
/// lines, zero bytes and stray backslashes included.
struct PamLines
{
    std::vector<PamLine> lines;
    PamReading reading = PamReading::Whole;
    /// The first thing that libpam reads in another way than it looks to a person.
    std::optional<PamFailure> oddity;
};

[[nodiscard]] PamLines pamLinesOf(std::string_view text);

/// The first words of a logical line, as libpam splits it: what stands in square brackets is one word, without them.
[[nodiscard]] std::vector<std::string> pamWordsOf(std::string_view line, std::size_t limit);

} // namespace vantro
