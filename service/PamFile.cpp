#include "service/PamFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <strings.h>

namespace vantro::service {
namespace {

/// libpam's buffer for a logical line, without the zero at its end.
constexpr std::size_t lineLimit = 1023;
constexpr std::string_view blanks = " \t\n";

bool isWord(const std::string& word, const char* expected)
{
    return ::strcasecmp(word.c_str(), expected) == 0;
}

std::vector<std::string> wordsOf(std::string_view line)
{
    std::vector<std::string> words;
    while (true) {
        const auto begin = line.find_first_not_of(blanks);
        if (begin == std::string_view::npos)
            return words;
        line.remove_prefix(begin);
        auto end = std::min(line.find_first_of(blanks), line.size());
        if (line.front() == '[') {
            end = 1;
            while (end < line.size() && line[end] != ']')
                end += line[end] == '\\' && end + 1 < line.size() ? 2 : 1;
            end = std::min(end + 1, line.size());
        }
        words.emplace_back(line.substr(0, end));
        line.remove_prefix(end);
    }
}

/// The type without the dash that keeps libpam silent about a missing module.
std::string typeOf(const PamFile::Entry& entry)
{
    const auto& word = entry.words.front();
    return word.starts_with('-') ? word.substr(1) : word;
}

bool isKnownType(const std::string& type)
{
    constexpr std::array interfaces = {ModuleInterface::Account, ModuleInterface::Auth, ModuleInterface::Password,
                                       ModuleInterface::Session};
    return std::any_of(interfaces.begin(), interfaces.end(),
                       [&type](ModuleInterface interface) { return isWord(type, pamKeyword(interface).c_str()); });
}

std::string_view fileNameOf(std::string_view path)
{
    return path.substr(path.rfind('/') + 1);
}

} // namespace

std::string_view describe(PamFailure failure)
{
    switch (failure) {
    case PamFailure::CarriageReturn:
        return "It has carriage returns, which libpam does not understand; give it plain line breaks.";
    case PamFailure::ZeroByte:
        return "It holds a zero byte; it is no text.";
    case PamFailure::LineTooLong:
        return "It has a line of more than 1023 bytes, which libpam cuts in two; shorten it.";
    case PamFailure::StrayContinuation:
        return "Its last line ends in a backslash, so that libpam reads none of it; complete the line.";
    case PamFailure::SeveralEntries:
        return "It has more than one entry of the module; remove all but one.";
    case PamFailure::EntryInsideJump:
        return "The module's entry stands between a jump and its target; move it out of there.";
    case PamFailure::JumpSpansInclude:
        return "A service that includes it jumps over the include; move the include out of there.";
    }
    return "Unknown failure.";
}

std::optional<std::string_view> PamFile::Entry::includedService(ModuleInterface interface) const
{
    if (words.size() >= 2 && isWord(words[0], "@include"))
        return words[1];
    if (words.size() >= 3 && isWord(typeOf(*this), pamKeyword(interface).c_str()) &&
        (isWord(words[1], "include") || isWord(words[1], "substack")))
        return words[2];
    return std::nullopt;
}

bool PamFile::Entry::isModuleOf(ModuleInterface interface) const
{
    if (isWord(words[0], "@include") || includedService(interface))
        return false;
    const std::string type = typeOf(*this);
    return isWord(type, pamKeyword(interface).c_str()) || !isKnownType(type);
}

std::size_t PamFile::Entry::jump() const
{
    if (words.size() < 2 || words[1].front() != '[')
        return 0;
    std::size_t longest = 0;
    for (auto equals = words[1].find('='); equals != std::string::npos; equals = words[1].find('=', equals + 1)) {
        const auto action = std::min(words[1].find_first_not_of(blanks, equals + 1), words[1].size());
        std::size_t count = 0;
        const auto result = std::from_chars(words[1].data() + action, words[1].data() + words[1].size(), count);
        // A number that is too large to be one leads over everything.
        longest = std::max(longest, result.ec == std::errc::result_out_of_range ? lineLimit : count);
    }
    return longest;
}

Outcome<PamFile, PamFailure> PamFile::parsed(std::string text)
{
    PamFile file(std::move(text));
    if (const auto failure = file.split())
        return *failure;
    return file;
}

std::optional<PamFailure> PamFile::split()
{
    if (text_.find('\r') != std::string::npos)
        return PamFailure::CarriageReturn;
    if (text_.find('\0') != std::string::npos)
        return PamFailure::ZeroByte;

    Entry entry;
    std::string line;
    bool isContinued = false;
    for (std::size_t begin = 0; begin < text_.size();) {
        const auto lineBreak = text_.find('\n', begin);
        const std::size_t end = lineBreak == std::string::npos ? text_.size() : lineBreak + 1;
        const std::string_view physical = std::string_view(text_).substr(begin, end - begin);
        const std::size_t size = physical.size() - (lineBreak == std::string::npos ? 0 : 1);
        if (line.size() + size > lineLimit)
            return PamFailure::LineTooLong;

        const auto comment = physical.find('#');
        const bool isBlank =
            std::min(physical.find_first_not_of(blanks), physical.size()) >= std::min(comment, physical.size());
        if (!isBlank) {
            if (!isContinued)
                entry.begin = begin;
            const auto last = physical.find_last_not_of(blanks);
            isContinued = comment == std::string_view::npos && physical[last] == '\\';
            line += physical.substr(0, isContinued ? last : std::min(comment, physical.size()));
            if (isContinued) {
                line += ' ';
            } else {
                entry.end = end;
                entry.words = wordsOf(line);
                if (!entry.words.empty())
                    entries_.push_back(std::move(entry));
                entry = {};
                line.clear();
            }
        }
        begin = end;
    }
    return isContinued ? std::optional(PamFailure::StrayContinuation) : std::nullopt;
}

Outcome<std::optional<PamFile::Entry>, PamFailure> PamFile::entryOf(const PamSetting& setting) const
{
    std::optional<Entry> found;
    for (const auto& entry : entries_) {
        if (entry.words.size() < 3 || !isWord(typeOf(entry), pamKeyword(setting.moduleInterface).c_str()) ||
            fileNameOf(entry.words[2]) != setting.moduleName)
            continue;
        if (found)
            return PamFailure::SeveralEntries;
        found = entry;
    }
    return found;
}

Outcome<std::string, PamFailure> PamFile::withEntry(const PamSetting& setting) const
{
    const auto known = entryOf(setting);
    if (!known)
        return known.failure();
    const std::string line =
        pamKeyword(setting.moduleInterface) + "\t" + pamKeyword(setting.controlFlag) + "\t" + setting.moduleName + "\n";
    std::string text = text_;
    if (*known)
        return text.replace((*known)->begin, (*known)->end - (*known)->begin, line);

    const auto first = std::find_if(entries_.begin(), entries_.end(), [&setting](const Entry& entry) {
        return entry.isModuleOf(setting.moduleInterface) || entry.includedService(setting.moduleInterface);
    });
    if (first != entries_.end())
        return text.insert(first->begin, line);
    if (!text.empty() && text.back() != '\n')
        text += '\n';
    return text + line;
}

Outcome<std::string, PamFailure> PamFile::withoutEntry(const PamSetting& setting) const
{
    const auto known = entryOf(setting);
    if (!known)
        return known.failure();
    std::string text = text_;
    if (*known)
        text.erase((*known)->begin, (*known)->end - (*known)->begin);
    return text;
}

} // namespace vantro::service
