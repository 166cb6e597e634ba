// The lab's stand-in for the login module: what libpam would load, so that a token can be demanded in the lab's own PAM
// services. It takes no part in signing in.

#include <security/pam_modules.h>

extern "C" {

[[gnu::visibility("default")]] int pam_sm_authenticate(pam_handle_t* /*handle*/, int /*flags*/, int /*count*/,
                                                       const char** /*arguments*/)
{
    return PAM_IGNORE;
}

[[gnu::visibility("default")]] int pam_sm_setcred(pam_handle_t* /*handle*/, int /*flags*/, int /*count*/,
                                                  const char** /*arguments*/)
{
    return PAM_SUCCESS;
}
}
