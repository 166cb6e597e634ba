#pragma once

#include "appkit/StringTable.h"

namespace vantro {

/// What the user key screens say: the texts of the string table "UserViewMessage". Each is looked up once and kept. Any
/// thread.
struct UserViewMessage
{
    UserViewMessage() = delete;

    static const QString& yubiKeyIsNotConnected() { return message<"UserViewMessage", "yubiKey_is_not_connected">(); }
    static const QString& alreadyAllocatedKey() { return message<"UserViewMessage", "already_allocated_key">(); }
    static const QString& notSelectedForDeletion() { return message<"UserViewMessage", "not_selected_for_deletion">(); }
};

} // namespace vantro
