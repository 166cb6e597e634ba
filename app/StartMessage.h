#pragma once

#include "appkit/StringTable.h"

namespace vantro {

/// What stands in the way of a start: the texts of the string table "StartMessage".
/// Any thread.
struct StartMessage
{
    StartMessage() = delete;

    static QString alreadyOpenHeading() { return localizedString("StartMessage", "already_open_heading"); }
    /// %1: the login name of who has it open.
    static QString alreadyOpenBy() { return localizedString("StartMessage", "already_open_by"); }
    static QString alreadyOpen() { return localizedString("StartMessage", "already_open"); }
    static QString documentUnreadableHeading()
    {
        return localizedString("StartMessage", "document_unreadable_heading");
    }
    /// %1: the document's path; %2: the system's reason.
    static QString documentUnreadable() { return localizedString("StartMessage", "document_unreadable"); }
    /// %1: the document's path; %2: the path under which it was kept.
    static QString documentKeptAside() { return localizedString("StartMessage", "document_kept_aside"); }
    static QString documentNotWrittenHeading()
    {
        return localizedString("StartMessage", "document_not_written_heading");
    }
    static QString lockUnusableHeading() { return localizedString("StartMessage", "lock_unusable_heading"); }
    /// %1: the lock file's path; %2: the system's reason.
    static QString lockUnusable() { return localizedString("StartMessage", "lock_unusable"); }
    static QString documentNotKeptHeading() { return localizedString("StartMessage", "document_not_kept_heading"); }
    /// %1: the document's path; %2: the system's reason.
    static QString documentNotKept() { return localizedString("StartMessage", "document_not_kept"); }
    static QString defaultsNotStoredHeading() { return localizedString("StartMessage", "defaults_not_stored_heading"); }
    /// %1: the path of the user defaults.
    static QString defaultsNotStored() { return localizedString("StartMessage", "defaults_not_stored"); }
    /// %1: the document's path.
    static QString documentNotWritten() { return localizedString("StartMessage", "document_not_written"); }
};

} // namespace vantro
