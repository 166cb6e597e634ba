#pragma once

#include "appkit/StringTable.h"

namespace vantro {

/// What the sign-in dialog says: the texts of the string table "LoginAuthAlertMessage". Each is looked up once and
/// kept. Any thread.
struct LoginAuthAlertMessage
{
    LoginAuthAlertMessage() = delete;

    static const QString& notConnectedYubiKey() { return message<"LoginAuthAlertMessage", "not_connected_yubikey">(); }
    static const QString& notAdminKey() { return message<"LoginAuthAlertMessage", "not_admin_key">(); }
    static const QString& authFailure() { return message<"LoginAuthAlertMessage", "auth_failure">(); }
};

} // namespace vantro
