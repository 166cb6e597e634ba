#pragma once

#include "appkit/StringTable.h"

namespace vantro {

/// What the user key screens say: the texts of the string table "UserViewMessage". Any thread.
struct UserViewMessage
{
    UserViewMessage() = delete;

    static QString yubiKeyIsNotConnected() { return localizedString("UserViewMessage", "yubiKey_is_not_connected"); }
    static QString alreadyAllocatedKey() { return localizedString("UserViewMessage", "already_allocated_key"); }
    static QString notSelectedForDeletion() { return localizedString("UserViewMessage", "not_selected_for_deletion"); }
};

} // namespace vantro
