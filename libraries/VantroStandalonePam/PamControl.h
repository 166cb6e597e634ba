#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace vantro {

/// What libpam does after a module has answered; a positive value is the number of steps that are jumped over.
namespace pam_action {
inline constexpr int ignore = 0;
inline constexpr int ok = -1;
inline constexpr int done = -2;
inline constexpr int bad = -3;
inline constexpr int die = -4;
inline constexpr int reset = -5;
} // namespace pam_action

/// How many answers a module has: PAM_SUCCESS (0) to PAM_INCOMPLETE.
inline constexpr std::size_t pamAnswerCount = 32;

/// The action for each answer.
using PamActions = std::array<int, pamAnswerCount>;

/// The same action for every answer.
[[nodiscard]] PamActions uniformPamActions(int action);

/// What libpam 1.5.2 makes of the second word of a module's entry: one of the four control flags, or a list of answers
/// and actions, with or without brackets. A list that it does not understand is bad for every answer.
[[nodiscard]] PamActions pamActionsOf(std::string_view control);

} // namespace vantro
