#pragma once

#include "appkit/StringTable.h"

namespace vantro {

/// What the administrator key screens say: the texts of the string table "AdminViewMessage". Each is looked up once and
/// kept. Any thread.
struct AdminViewMessage
{
    AdminViewMessage() = delete;

    static const QString& alreadyAllocatedKey() { return message<"AdminViewMessage", "already_allocated_key">(); }
    static const QString& yubiKeyIsNotConnected() { return message<"AdminViewMessage", "yubiKey_is_not_connected">(); }
    static const QString& notSelectedForDeletion()
    {
        return message<"AdminViewMessage", "not_selected_for_deletion">();
    }
    static const QString& noRegistrationAdminYubiKey()
    {
        return message<"AdminViewMessage", "no_registration_admin_yubiKey">();
    }
};

} // namespace vantro
