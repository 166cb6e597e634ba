#pragma once

#include "appkit/StringTable.h"

namespace vantro {

/// What the administrator key screens say: the texts of the string table "AdminViewMessage". Each is looked up once and
/// kept. Any thread.
struct AdminViewMessage
{
    AdminViewMessage() = delete;

    static QString alreadyAllocatedKey() { return localizedString("AdminViewMessage", "already_allocated_key"); }
    static QString yubiKeyIsNotConnected() { return localizedString("AdminViewMessage", "yubiKey_is_not_connected"); }
    static QString notSelectedForDeletion() { return localizedString("AdminViewMessage", "not_selected_for_deletion"); }
    static QString noRegistrationAdminYubiKey()
    {
        return localizedString("AdminViewMessage", "no_registration_admin_yubiKey");
    }
};

} // namespace vantro
