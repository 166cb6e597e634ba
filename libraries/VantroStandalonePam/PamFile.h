#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "VantroStandalonePam/PamControl.h"
#include "VantroStandalonePam/PamFailure.h"
#include "VantroStandalonePam/PamLines.h"
#include "VantroStandaloneSetting/PamSetting.h"
#include "foundation/Outcome.h"

namespace vantro {

/// The text of one PAM service (a file of /etc/pam.d), cut into entries the way libpam reads it. Knows nothing of
/// other files. Immutable.
class PamFile
{
  public:
    /// One logical line that takes part in authenticating: of the interface auth, of one that libpam does not know,
    /// which it takes for a failing module of auth, or an include of a whole file.
    struct Entry
    {
        enum class Kind
        {
            Module,
            /// Puts the other file's entries for auth in its place.
            Include,
            /// The same, as a stack of its own.
            Substack,
            /// Puts the other file's entries for all interfaces in its place ("@include").
            IncludeAll
        };

        /// Where it begins, and where it ends behind its last line break.
        std::size_t begin = 0;
        std::size_t end = 0;
        Kind kind = Kind::Module;
        /// libpam calls no module but lets it fail, for its interface or the module's name is missing.
        bool isMalformed = false;
        /// The module's path, or the name of the included file.
        std::string target;
        PamActions actions = uniformPamActions(pam_action::bad);

        /// The most steps that it may jump over.
        [[nodiscard]] std::size_t jump() const;
    };

    explicit PamFile(std::string text);

    /// What is behind a name that can't be read here, but perhaps by libpam.
    [[nodiscard]] static PamFile unreadable();

    [[nodiscard]] const std::string& text() const { return text_; }
    /// Those that libpam gets to.
    [[nodiscard]] const std::vector<Entry>& entries() const { return entries_; }
    [[nodiscard]] PamReading reading() const { return reading_; }

    /// Whether the entry is the one of the setting's module, wherever the module's folder.
    [[nodiscard]] static bool isEntryOf(const PamSetting& setting, const Entry& entry);
    [[nodiscard]] bool hasEntryOf(const PamSetting& setting) const;
    /// Whether authenticating fails when the setting's module denies it, whatever other modules answer.
    [[nodiscard]] bool isDemandedBy(const PamSetting& setting) const;

    /// The text with exactly one entry for the setting, in the place of the one that is there. A new one comes before
    /// everything that the file has for auth: no line can end the stack before it, and no jump of this file leads over
    /// it. Every other byte stays, but a last line without its break is given one. Fails where libpam does not read the
    /// text as it looks, and where there are several entries. An optional one takes the place of all that are there
    /// even so.
    [[nodiscard]] Outcome<std::string, PamFailure> withEntry(const PamSetting& setting) const;

    /// The text without the entry. Fails for several.
    [[nodiscard]] Outcome<std::string, PamFailure> withoutEntry(const PamSetting& setting) const;

  private:
    [[nodiscard]] std::vector<Entry> entriesOf(const PamSetting& setting) const;
    [[nodiscard]] bool isWholeLines(const Entry& entry) const;

    std::string text_;
    std::vector<Entry> entries_;
    PamReading reading_ = PamReading::Whole;
    std::optional<PamFailure> oddity_;
};

} // namespace vantro
