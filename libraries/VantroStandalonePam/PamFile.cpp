#include "VantroStandalonePam/PamFile.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <strings.h>
#include <utility>

#include <security/pam_appl.h>

namespace vantro {
namespace {

using Entry = PamFile::Entry;
using Kind = Entry::Kind;

bool isWord(const std::string& word, const char* expected)
{
    return ::strcasecmp(word.c_str(), expected) == 0;
}

std::string_view fileNameOf(std::string_view path)
{
    return path.substr(path.rfind('/') + 1);
}

/// Whether libpam can make a name for its log of the path; it stops, or crashes, where it can't.
bool isNameable(const std::string& path)
{
    const auto name = fileNameOf(path);
    const auto stem = name.substr(0, name.rfind('.'));
    return !stem.empty() && stem != "?";
}

/// The interface that a line's first word names; nothing for one that libpam does not know.
std::optional<ModuleInterface> interfaceOf(const std::string& word)
{
    constexpr std::array interfaces = {ModuleInterface::Account, ModuleInterface::Auth, ModuleInterface::Password,
                                       ModuleInterface::Session};
    const auto found = std::find_if(interfaces.begin(), interfaces.end(), [&word](ModuleInterface interface) {
        return isWord(word, pamKeyword(interface).c_str());
    });
    return found == interfaces.end() ? std::nullopt : std::optional(*found);
}

Kind kindOf(const std::string& control)
{
    if (isWord(control, "include"))
        return Kind::Include;
    return isWord(control, "substack") ? Kind::Substack : Kind::Module;
}

struct ParsedLine
{
    Entry entry;
    bool isForAuth = true;
    /// libpam reads past it without harm.
    bool isReadable = true;
};

ParsedLine parsedLine(const PamLine& line)
{
    const auto words = pamWordsOf(line.text, 3);
    const auto wordAt = [&words](std::size_t index) { return index < words.size() ? words[index] : std::string(); };
    ParsedLine parsed;
    auto& entry = parsed.entry;
    entry.begin = line.begin;
    entry.end = line.end;
    // A dash keeps libpam silent about a module that is missing.
    const auto first = wordAt(0);
    const auto type = first.starts_with('-') ? first.substr(1) : first;
    if (isWord(type, "@include")) {
        entry.kind = Kind::IncludeAll;
        entry.target = wordAt(1);
        parsed.isReadable = words.size() > 1;
        return parsed;
    }
    const auto interface = interfaceOf(type);
    parsed.isForAuth = !interface || interface == ModuleInterface::Auth;
    entry.kind = kindOf(wordAt(1));
    entry.target = wordAt(2);
    entry.isMalformed = !interface || words.size() < 3;
    if (entry.kind == Kind::Module && words.size() > 1)
        entry.actions = pamActionsOf(words[1]);
    const bool isNamed = words.size() > 2;
    if (entry.kind == Kind::Include)
        parsed.isReadable = isNamed;
    else if (entry.kind == Kind::Substack)
        parsed.isReadable = isNamed && isNameable(entry.target);
    else
        parsed.isReadable = !isNamed || isNameable(entry.target);
    return parsed;
}

std::string lineOf(const PamSetting& setting)
{
    return pamKeyword(setting.moduleInterface) + "\t" + pamKeyword(setting.controlFlag) + "\t" + setting.moduleName +
           "\n";
}

} // namespace

std::size_t PamFile::Entry::jump() const
{
    const int longest = isMalformed ? actions[PAM_PERM_DENIED] : *std::max_element(actions.begin(), actions.end());
    return static_cast<std::size_t>(std::max(longest, 0));
}

PamFile::PamFile(std::string text) : text_(std::move(text))
{
    const auto lines = pamLinesOf(text_);
    reading_ = lines.reading;
    oddity_ = lines.oddity;
    for (const auto& line : lines.lines) {
        auto [entry, isForAuth, isReadable] = parsedLine(line);
        if (!isReadable) {
            reading_ = PamReading::Breaks;
            oddity_ = oddity_.value_or(PamFailure::NamelessEntry);
            return;
        }
        if (isForAuth)
            entries_.push_back(std::move(entry));
    }
}

PamFile PamFile::unreadable()
{
    PamFile file{std::string()};
    file.reading_ = PamReading::Unknown;
    return file;
}

bool PamFile::isEntryOf(const PamSetting& setting, const Entry& entry)
{
    return entry.kind == Kind::Module && !entry.isMalformed && fileNameOf(entry.target) == setting.moduleName;
}

bool PamFile::hasEntryOf(const PamSetting& setting) const
{
    return !entriesOf(setting).empty();
}

bool PamFile::isDemandedBy(const PamSetting& setting) const
{
    const auto known = entriesOf(setting);
    return std::any_of(known.begin(), known.end(), [](const Entry& entry) {
        const int action = entry.actions[PAM_AUTH_ERR];
        return action == pam_action::bad || action == pam_action::die;
    });
}

std::vector<Entry> PamFile::entriesOf(const PamSetting& setting) const
{
    std::vector<Entry> found;
    std::copy_if(entries_.begin(), entries_.end(), std::back_inserter(found),
                 [&setting](const Entry& entry) { return isEntryOf(setting, entry); });
    return found;
}

bool PamFile::isWholeLines(const Entry& entry) const
{
    return (entry.begin == 0 || text_[entry.begin - 1] == '\n') &&
           (entry.end == text_.size() || text_[entry.end - 1] == '\n');
}

Outcome<std::string, PamFailure> PamFile::withEntry(const PamSetting& setting) const
{
    const auto known = entriesOf(setting);
    if (setting.controlFlag != ControlFlag::Optional || known.empty()) {
        if (oddity_)
            return *oddity_;
        if (known.size() > 1)
            return PamFailure::SeveralEntries;
    }
    const auto line = lineOf(setting);
    std::string text;
    std::size_t kept = 0;
    for (const auto& entry : known) {
        if (!isWholeLines(entry))
            return PamFailure::LineTooLong;
        text += text_.substr(kept, entry.begin - kept) + line;
        kept = entry.end;
    }
    text += text_.substr(kept);
    if (!known.empty())
        return text;
    if (!entries_.empty())
        return text.insert(entries_.front().begin, line);
    if (!text.empty() && text.back() != '\n')
        text += '\n';
    return text + line;
}

Outcome<std::string, PamFailure> PamFile::withoutEntry(const PamSetting& setting) const
{
    const auto known = entriesOf(setting);
    if (known.empty())
        return text_;
    if (oddity_)
        return *oddity_;
    if (known.size() > 1)
        return PamFailure::SeveralEntries;
    std::string text = text_;
    return text.erase(known.front().begin, known.front().end - known.front().begin);
}

} // namespace vantro
