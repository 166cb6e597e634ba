// Signs an account in as a login screen does, with libpam, and prints what the login module says, a line each. Ends
// with 0 where libpam lets the account in.

#include <clocale>
#include <cstdlib>
#include <iostream>

#include <libintl.h>
#include <security/pam_appl.h>

namespace {

/// Whether the login module has given a reason; without one, what libpam answers stands for it.
bool hasSpoken = false;

/// Nobody is there to answer a question: the PAM services of the lab ask none.
int converse(int count, const pam_message** messages, pam_response** responses, void*)
{
    for (int index = 0; index < count; ++index) {
        const pam_message& message = *messages[index];
        if (message.msg_style != PAM_TEXT_INFO && message.msg_style != PAM_ERROR_MSG) {
            return PAM_CONV_ERR;
        }
        std::cout << message.msg << '\n' << std::flush;
        hasSpoken = true;
    }
    *responses = static_cast<pam_response*>(std::calloc(static_cast<std::size_t>(count), sizeof(pam_response)));
    return *responses != nullptr ? PAM_SUCCESS : PAM_BUF_ERR;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::cerr << "usage: " << argv[0] << " ACCOUNT PAM_SERVICE FOLDER_OF_PAM_SERVICES\n";
        return EXIT_FAILURE;
    }
    std::setlocale(LC_ALL, "");
    // The module's catalogues are where they are only once it is installed.
    ::bindtextdomain("pam_vantro_standalone", LAB_TEXTS);
    const pam_conv conversation{&converse, nullptr};
    pam_handle_t* pam = nullptr;
    int status = ::pam_start_confdir(argv[2], argv[1], &conversation, argv[3], &pam);
    if (status == PAM_SUCCESS) {
        status = ::pam_authenticate(pam, 0);
    }
    if (status != PAM_SUCCESS && !hasSpoken) {
        std::cout << ::pam_strerror(pam, status) << '\n' << std::flush;
    }
    ::pam_end(pam, status);
    return status == PAM_SUCCESS ? EXIT_SUCCESS : EXIT_FAILURE;
}
