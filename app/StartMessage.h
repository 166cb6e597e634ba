#pragma once

#include "appkit/StringTable.h"

namespace vantro {

/// What stands in the way of a start: the texts of the string table "StartMessage". Each is looked up once and kept.
/// Any thread.
struct StartMessage
{
    StartMessage() = delete;

    static const QString& alreadyOpenHeading() { return message<"StartMessage", "already_open_heading">(); }
    /// %1: the login name of who has it open.
    static const QString& alreadyOpenBy() { return message<"StartMessage", "already_open_by">(); }
    static const QString& alreadyOpen() { return message<"StartMessage", "already_open">(); }
    static const QString& documentUnreadableHeading()
    {
        return message<"StartMessage", "document_unreadable_heading">();
    }
    /// %1: the document's path; %2: the system's reason.
    static const QString& documentUnreadable() { return message<"StartMessage", "document_unreadable">(); }
    /// %1: the document's path; %2: the path under which it was kept.
    static const QString& documentKeptAside() { return message<"StartMessage", "document_kept_aside">(); }
    static const QString& documentNotWrittenHeading()
    {
        return message<"StartMessage", "document_not_written_heading">();
    }
    static const QString& lockUnusableHeading() { return message<"StartMessage", "lock_unusable_heading">(); }
    /// %1: the lock file's path; %2: the system's reason.
    static const QString& lockUnusable() { return message<"StartMessage", "lock_unusable">(); }
    static const QString& documentNotKeptHeading() { return message<"StartMessage", "document_not_kept_heading">(); }
    /// %1: the document's path; %2: the system's reason.
    static const QString& documentNotKept() { return message<"StartMessage", "document_not_kept">(); }
    static const QString& defaultsNotStoredHeading()
    {
        return message<"StartMessage", "defaults_not_stored_heading">();
    }
    /// %1: the path of the user defaults.
    static const QString& defaultsNotStored() { return message<"StartMessage", "defaults_not_stored">(); }
    /// %1: the document's path.
    static const QString& documentNotWritten() { return message<"StartMessage", "document_not_written">(); }
};

} // namespace vantro
