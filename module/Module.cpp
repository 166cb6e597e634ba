#include <cstring>

#include <pthread.h>
#include <security/pam_ext.h>
#include <security/pam_modules.h>
#include <syslog.h>
#include <unistd.h>

#include "Arguments.h"
#include "Conversation.h"
#include "SignInCall.h"

namespace vantro::module {
namespace {

/// Holds a cancellation of the calling thread back while the module holds what it would leak.
class Uncancelled
{
  public:
    Uncancelled() { ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before_); }
    ~Uncancelled() { ::pthread_setcancelstate(before_, nullptr); }
    Uncancelled(const Uncancelled&) = delete;
    Uncancelled& operator=(const Uncancelled&) = delete;

  private:
    int before_ = PTHREAD_CANCEL_ENABLE;
};

bool isThisMachine(const char* host)
{
    constexpr std::size_t longestName = 256;
    char own[longestName] = {};
    return std::strcmp(host, "localhost") == 0 || std::strcmp(host, "::1") == 0 || std::strncmp(host, "127.", 4) == 0 ||
           (::gethostname(own, sizeof own - 1) == 0 && std::strcmp(host, own) == 0);
}

/// Whether the sign-in comes from another machine, as far as the program tells.
bool isRemote(const pam_handle_t* pam)
{
    const void* item = nullptr;
    if (pam_get_item(pam, PAM_RHOST, &item) != PAM_SUCCESS || item == nullptr)
        return false;
    const auto* const host = static_cast<const char*>(item);
    return *host != '\0' && !isThisMachine(host);
}

struct Answer
{
    int code;
    /// What the person is told; PlugIn for nothing.
    Text text;
};

constexpr Text nothing = Text::PlugIn;

Answer answerOf(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Accepted:
        return {PAM_SUCCESS, nothing};
    case Outcome::NotDemanded:
        return {PAM_IGNORE, nothing};
    case Outcome::NoToken:
        return {PAM_AUTH_ERR, Text::NoToken};
    case Outcome::Refused:
        return {PAM_AUTH_ERR, Text::Refused};
    case Outcome::UnknownAccount:
        return {PAM_USER_UNKNOWN, Text::UnknownAccount};
    case Outcome::Cancelled:
        return {PAM_AUTH_ERR, nothing};
    case Outcome::Unavailable:
        break;
    }
    return {PAM_AUTHINFO_UNAVAIL, Text::Unavailable};
}

int authenticate(pam_handle_t* pam, int flags, const Arguments& arguments)
{
    const char* account = nullptr;
    if (const int result = pam_get_user(pam, &account, nullptr); result != PAM_SUCCESS)
        return result == PAM_CONV_AGAIN ? PAM_INCOMPLETE : result;
    if (account == nullptr || *account == '\0')
        return PAM_USER_UNKNOWN;
    const Conversation conversation(pam, static_cast<unsigned int>(flags));
    if (isRemote(pam)) {
        pam_syslog(pam, LOG_NOTICE, "%s signs in from another machine, where no token can be checked.", account);
        if (arguments.remote == Arguments::Remote::Ignore)
            return PAM_IGNORE;
        conversation.refuse(Text::Remote);
        return PAM_AUTH_ERR;
    }
    const auto [code, text] = answerOf(askService(account, arguments.waitSeconds, conversation));
    if (arguments.isDebug)
        pam_syslog(pam, LOG_DEBUG, "%s: %s.", account, pam_strerror(pam, code));
    if (code != PAM_SUCCESS && code != PAM_IGNORE)
        pam_syslog(pam, LOG_NOTICE, "%s is not let in by a token: %s.", account, pam_strerror(pam, code));
    if (text != nothing)
        conversation.refuse(text);
    return code;
}

} // namespace
} // namespace vantro::module

// The entry points' names, arguments and results are libpam's, as its guide for the writers of modules has them.

PAM_EXTERN __attribute__((visibility("default"))) int pam_sm_authenticate(pam_handle_t* pam, int flags, int count,
                                                                          const char** arguments)
{
    const vantro::module::Uncancelled uncancelled;
    return vantro::module::authenticate(pam, flags, vantro::module::argumentsOf(pam, count, arguments));
}

PAM_EXTERN __attribute__((visibility("default"))) int pam_sm_setcred(pam_handle_t* /*pam*/, int /*flags*/,
                                                                     int /*count*/, const char** /*arguments*/)
{
    return PAM_SUCCESS;
}
