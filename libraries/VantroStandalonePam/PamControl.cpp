#include "VantroStandalonePam/PamControl.h"

#include <algorithm>
#include <optional>
#include <string>
#include <strings.h>

#include <security/pam_appl.h>

namespace vantro {
namespace {

/// The answers' names in the order of their numbers.
constexpr std::array<std::string_view, pamAnswerCount> answerNames = {"success",
                                                                      "open_err",
                                                                      "symbol_err",
                                                                      "service_err",
                                                                      "system_err",
                                                                      "buf_err",
                                                                      "perm_denied",
                                                                      "auth_err",
                                                                      "cred_insufficient",
                                                                      "authinfo_unavail",
                                                                      "user_unknown",
                                                                      "maxtries",
                                                                      "new_authtok_reqd",
                                                                      "acct_expired",
                                                                      "session_err",
                                                                      "cred_unavail",
                                                                      "cred_expired",
                                                                      "cred_err",
                                                                      "no_module_data",
                                                                      "conv_err",
                                                                      "authtok_err",
                                                                      "authtok_recover_err",
                                                                      "authtok_lock_busy",
                                                                      "authtok_disable_aging",
                                                                      "try_again",
                                                                      "ignore",
                                                                      "abort",
                                                                      "authtok_expired",
                                                                      "module_unknown",
                                                                      "bad_item",
                                                                      "conv_again",
                                                                      "incomplete"};

struct NamedAction
{
    std::string_view name;
    int action;
};
constexpr std::array<NamedAction, 6> namedActions = {{{"ignore", pam_action::ignore},
                                                      {"ok", pam_action::ok},
                                                      {"done", pam_action::done},
                                                      {"bad", pam_action::bad},
                                                      {"die", pam_action::die},
                                                      {"reset", pam_action::reset}}};

/// Stands for an answer that the list has not named so far.
constexpr int undefined = -6;
/// More steps than any stack has. libpam lets a number run over its end.
constexpr int longestJump = 100'000'000;
/// isspace(3) in the C locale.
constexpr std::string_view spaces = " \t\n\v\f\r";

void setDefault(PamActions& actions, int action)
{
    std::replace(actions.begin(), actions.end(), undefined, action);
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// Reads a list such as "success=1 default=ignore".
class ControlReader
{
  public:
    explicit ControlReader(std::string_view rest) : rest_(rest) {}

    /// Nothing where libpam does not understand it.
    std::optional<PamActions> read()
    {
        auto actions = uniformPamActions(undefined);
        for (skipSpaces(); !rest_.empty(); skipSpaces()) {
            const auto name = std::find_if(answerNames.begin(), answerNames.end(),
                                           [this](std::string_view known) { return rest_.starts_with(known); });
            const bool isNamed = name != answerNames.end();
            if (!takes(isNamed ? *name : "default"))
                return std::nullopt;
            skipSpaces();
            if (!takes("="))
                return std::nullopt;
            skipSpaces();
            const auto action = takeAction();
            if (!action)
                return std::nullopt;
            if (isNamed)
                actions[static_cast<std::size_t>(name - answerNames.begin())] = *action;
            else
                setDefault(actions, *action);
        }
        setDefault(actions, pam_action::bad);
        return actions;
    }

  private:
    void skipSpaces() { rest_.remove_prefix(std::min(rest_.find_first_not_of(spaces), rest_.size())); }

    bool takes(std::string_view word)
    {
        if (!rest_.starts_with(word))
            return false;
        rest_.remove_prefix(word.size());
        return true;
    }

    std::optional<int> takeAction()
    {
        for (const auto& [name, action] : namedActions)
            if (takes(name))
                return action;
        int jump = 0;
        for (; !rest_.empty() && isDigit(rest_.front()); rest_.remove_prefix(1))
            jump = std::min(jump * 10 + (rest_.front() - '0'), longestJump);
        return jump > 0 ? std::optional(jump) : std::nullopt;
    }

    std::string_view rest_;
};

/// A flag's actions: for success (a new password that is due counts as one), and for everything else.
PamActions flagActions(int success, int otherwise)
{
    auto actions = uniformPamActions(otherwise);
    actions[PAM_SUCCESS] = actions[PAM_NEW_AUTHTOK_REQD] = success;
    actions[PAM_IGNORE] = pam_action::ignore;
    return actions;
}

} // namespace

PamActions uniformPamActions(int action)
{
    PamActions actions;
    actions.fill(action);
    return actions;
}

PamActions pamActionsOf(std::string_view control)
{
    const auto is = [word = std::string(control)](const char* flag) { return ::strcasecmp(word.c_str(), flag) == 0; };
    if (is("required"))
        return flagActions(pam_action::ok, pam_action::bad);
    if (is("requisite"))
        return flagActions(pam_action::ok, pam_action::die);
    if (is("optional"))
        return flagActions(pam_action::ok, pam_action::ignore);
    if (is("sufficient"))
        return flagActions(pam_action::done, pam_action::ignore);
    return ControlReader(control).read().value_or(uniformPamActions(pam_action::bad));
}

} // namespace vantro
