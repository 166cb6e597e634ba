#pragma once

#include "appkit/StringTable.h"

namespace vantro {

/// What the sign-in dialog says: the texts of the string table "LoginAuthAlertMessage". Each is looked up once and
/// kept. Any thread.
struct LoginAuthAlertMessage
{
    LoginAuthAlertMessage() = delete;

    static QString notConnectedYubiKey() { return localizedString("LoginAuthAlertMessage", "not_connected_yubikey"); }
    static QString notAdminKey() { return localizedString("LoginAuthAlertMessage", "not_admin_key"); }
    static QString authFailure() { return localizedString("LoginAuthAlertMessage", "auth_failure"); }
};

} // namespace vantro
