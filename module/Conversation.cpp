#include "Conversation.h"

#include <cstddef> // IWYU pragma: keep (the NULL of a macro of libintl.h)
#include <libintl.h>
#include <security/pam_ext.h>

namespace vantro::module {
namespace {

constexpr const char* catalogue = "pam_vantro_standalone";

const char* sourceOf(Text text)
{
    switch (text) {
    case Text::PlugIn:
        return "Plug in your token.";
    case Text::Touch:
        return "Touch your token.";
    case Text::NoToken:
        return "No registered token was plugged in.";
    case Text::Refused:
        return "The token was not accepted.";
    case Text::UnknownAccount:
        return "This account is not known here.";
    case Text::Unavailable:
        return "The token could not be checked. Try again, or ask an administrator.";
    case Text::Remote:
        return "A token is demanded, which can't be checked from another machine.";
    }
    return "";
}

} // namespace

bool Conversation::inform(Text text) const
{
    return pam_info(pam_, "%s", dgettext(catalogue, sourceOf(text))) == PAM_SUCCESS;
}

void Conversation::refuse(Text text) const
{
    if (!isSilent_)
        pam_error(pam_, "%s", dgettext(catalogue, sourceOf(text)));
}

} // namespace vantro::module
