#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "VantroStandaloneSetting/ForeignContent.h"
#include "VantroStandaloneSetting/VantroStandaloneSetting.h"
#include "foundation/DurableFile.h"
#include "foundation/NotificationCenter.h"

namespace vantro {

/// Posted by SettingFile::write(), without an object, when the document could not be stored.
inline const NotificationName DocumentNotWritten = "document_not_written";

/// The settings document's file of this installation: reads it, replaces it and keeps what must not be lost. Knows what
/// it has read last: what is foreign in it is written back, and one that could not be read is not overwritten. Main
/// thread.
class SettingFile
{
  public:
    /// The file's name in the settings folder.
    static constexpr const char* fileName = "VantroStandaloneSetting.xml";

    /// Finds the settings folder in the information dictionary; touches no file.
    SettingFile();

    [[nodiscard]] const std::filesystem::path& url() const { return url_; }

    /// The document in the file, which may be invalid; nothing when the file is missing or can't be read, or is larger
    /// than 256 MiB.
    [[nodiscard]] std::optional<VantroStandaloneSetting> read();

    /// Replaces the file whole and durably and keeps its mode. A file that is there and can't be read (a link, a file
    /// of several names, one that is larger than read() takes, one that the account may not read) is kept aside in the
    /// instant in which the new one takes its place, under the name with ".unreadable" appended (or the first free
    /// "…-1" and so on behind it). One that could not be read before and now can is left alone, and so is one where
    /// nothing can be kept aside: then nothing is written. Nor is anything that could not be read again. A failure is
    /// logged and leaves the old file, and posts DocumentNotWritten.
    void write(const VantroStandaloneSetting& setting);

    /// Keeps the file, which is no valid document, as the one with ".invalid" appended: a copy, or the file itself
    /// where it can't be copied. What stood there is first moved to a free name (".invalid-old", "…-1"). An error means
    /// that it is not kept.
    [[nodiscard]] std::error_code keepInvalid() const;

    /// Why the file could not be read when it was asked for last, or can't be read at the moment, a file that is
    /// missing included; no error where it can.
    [[nodiscard]] std::error_code readability() const;

    /// Why write() could not replace the file at the moment, as far as its folder tells; no error where it could.
    [[nodiscard]] std::error_code writability() const;

    /// Where the last write() that found a file that can't be read moved it; empty when none did.
    [[nodiscard]] const std::filesystem::path& keptAside() const { return keptAside_; }

  private:
    [[nodiscard]] Replacement replace(const std::string& text);

    const std::filesystem::path url_;
    /// Why the file could not be read when it was asked for last; no error where it was read or is not there.
    std::error_code readError_;
    ForeignContent foreign_;
    std::filesystem::path keptAside_;
};

} // namespace vantro
