// The module that the generated PAM services call: it leaves to the program what it answers.

#include <security/pam_modules.h>

/// Notes that the module with this argument was called, and answers for it.
extern "C" int vantroProbe(const char* argument);

extern "C" int pam_sm_authenticate(pam_handle_t*, int, int argumentCount, const char** arguments)
{
    return vantroProbe(argumentCount > 0 ? arguments[0] : "");
}

extern "C" int pam_sm_setcred(pam_handle_t*, int, int, const char**)
{
    return PAM_SUCCESS;
}
