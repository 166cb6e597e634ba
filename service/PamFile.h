#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "VantroStandaloneSetting/PamSetting.h"
#include "service/Outcome.h"

namespace vantro::service {

/// Why a PAM service's text is not changed.
enum class PamFailure
{
    /// libpam takes a carriage return for a part of the last word.
    CarriageReturn,
    ZeroByte,
    LineTooLong,
    StrayContinuation,
    SeveralEntries,
    EntryInsideJump,
    JumpSpansInclude
};

/// For the log: what is wrong and what to do.
[[nodiscard]] std::string_view describe(PamFailure failure);

/// The text of one PAM service (a file of /etc/pam.d), cut into entries the way libpam reads it. Knows nothing of
/// files. Immutable.
class PamFile
{
  public:
    /// One logical line that holds more than a comment.
    struct Entry
    {
        /// Where it begins, and where it ends behind its last line break.
        std::size_t begin = 0;
        std::size_t end = 0;
        /// Its words without comment; a word in square brackets is one, with its brackets.
        std::vector<std::string> words;

        /// The service that the whole line includes ("@include", or the control word "include" or "substack" in a line
        /// of this interface); nothing for a module's line.
        [[nodiscard]] std::optional<std::string_view> includedService(ModuleInterface interface) const;
        /// Whether the line is a part of the interface's stack: a module's line of this interface, or one with a type
        /// that libpam does not know, which it takes for a failing module.
        [[nodiscard]] bool isModuleOf(ModuleInterface interface) const;
        /// How many modules the line may jump over.
        [[nodiscard]] std::size_t jump() const;
    };

    /// Fails for a text that libpam would not read as it stands.
    [[nodiscard]] static Outcome<PamFile, PamFailure> parsed(std::string text);

    [[nodiscard]] const std::string& text() const { return text_; }
    [[nodiscard]] const std::vector<Entry>& entries() const { return entries_; }

    /// The entry of the setting's module in the stack of its interface, wherever the module's folder; nothing when
    /// there is none.
    [[nodiscard]] Outcome<std::optional<Entry>, PamFailure> entryOf(const PamSetting& setting) const;

    /// The text with exactly one entry for the setting, in the place of the one that is there. A new one comes before
    /// everything that the file has in the interface's stack: no line can end the stack before it, and no jump of this
    /// file leads over it. Every other byte stays, but a last line without its break is given one.
    [[nodiscard]] Outcome<std::string, PamFailure> withEntry(const PamSetting& setting) const;

    /// The text without the entry.
    [[nodiscard]] Outcome<std::string, PamFailure> withoutEntry(const PamSetting& setting) const;

  private:
    explicit PamFile(std::string text) : text_(std::move(text)) {}
    [[nodiscard]] std::optional<PamFailure> split();

    std::string text_;
    std::vector<Entry> entries_;
};

} // namespace vantro::service
