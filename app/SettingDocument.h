#pragma once

#include <system_error>

#include "VantroStandaloneSetting/SettingFile.h"
#include "VantroStandaloneSetting/VantroStandaloneSetting.h"

namespace vantro {

/// The settings document that the tool works on: a value that has a file. Whoever changes it calls write() before the
/// operation ends. Main thread.
class SettingDocument : public VantroStandaloneSetting
{
  public:
    /// A new document, nothing read and nothing written.
    SettingDocument() = default;

    /// Replaces what the document holds; its file stays the same.
    SettingDocument& operator=(VantroStandaloneSetting setting);

    /// Reads the file. False, and the document as it was, when it is missing or can't be read; one that is read may be
    /// invalid.
    [[nodiscard]] bool load();

    /// Stores the document in its file; see SettingFile::write().
    void write() { file_.write(*this); }

    /// Lets every account that reaches the file's folder read and write the file, where it is the user's own or the
    /// user is root; else does nothing. The error, if any, of looking or changing.
    [[nodiscard]] std::error_code openUpFilePermissions() const;

    [[nodiscard]] const SettingFile& file() const { return file_; }

  private:
    SettingFile file_;
};

} // namespace vantro
