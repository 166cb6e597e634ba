#pragma once

#include "appkit/StringTable.h"

namespace vantro {

/// What the master key screens say: the texts of the string table "MasterKeyViewMessage". Each is looked up once and
/// kept. Any thread.
struct MasterKeyViewMessage
{
    MasterKeyViewMessage() = delete;

    static QString alreadyAllocatedKey() { return localizedString("MasterKeyViewMessage", "already_allocated_key"); }
    static QString yubiKeyIsNotConnected()
    {
        return localizedString("MasterKeyViewMessage", "yubiKey_is_not_connected");
    }
    static QString notSelectedForDeletion()
    {
        return localizedString("MasterKeyViewMessage", "not_selected_for_deletion");
    }
};

} // namespace vantro
