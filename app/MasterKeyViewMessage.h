#pragma once

#include "appkit/StringTable.h"

namespace vantro {

/// What the master key screens say: the texts of the string table "MasterKeyViewMessage". Each is looked up once and
/// kept. Any thread.
struct MasterKeyViewMessage
{
    MasterKeyViewMessage() = delete;

    static const QString& alreadyAllocatedKey() { return message<"MasterKeyViewMessage", "already_allocated_key">(); }
    static const QString& yubiKeyIsNotConnected()
    {
        return message<"MasterKeyViewMessage", "yubiKey_is_not_connected">();
    }
    static const QString& notSelectedForDeletion()
    {
        return message<"MasterKeyViewMessage", "not_selected_for_deletion">();
    }
};

} // namespace vantro
