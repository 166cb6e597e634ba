#pragma once

#include <security/pam_modules.h>

namespace vantro::module {

/// What the person who signs in is told.
enum class Text
{
    PlugIn,
    Touch,
    NoToken,
    Refused,
    UnknownAccount,
    Unavailable,
    Remote
};

/// Shows texts to the person who signs in, by the program's own conversation and in the language of its locale.
class Conversation
{
  public:
    /// `flags` are those that libpam gives the module's entry points.
    Conversation(pam_handle_t* pam, unsigned int flags) : pam_(pam), isSilent_((flags & PAM_SILENT) != 0) {}

    /// What somebody is to do now, as a prompt: also where the program asked for silence, as sudo does, or nobody would
    /// know what is waited for. False when the program ended the conversation.
    [[nodiscard]] bool inform(Text text) const;
    /// Why nobody is signed in; nothing where the program asked for silence.
    void refuse(Text text) const;

  private:
    pam_handle_t* pam_;
    bool isSilent_;
};

} // namespace vantro::module
