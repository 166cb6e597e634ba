// What Cycle makes of an operation and of the files after it.

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <numeric>
#include <sys/stat.h>

#include "Cycle.h"

namespace vantro::torture {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t toldAtMost = 20;
constexpr std::array answerNames = {"done", "nothing to do it with", "failed", "an untrue value"};

std::optional<std::string> textAt(const fs::path& path)
{
    std::error_code error;
    const auto size = fs::file_size(path, error);
    if (error)
        return std::nullopt;
    std::string text(size, '\0');
    std::ifstream(path, std::ios::binary).read(text.data(), static_cast<std::streamsize>(size));
    return text;
}

std::uint64_t countOf(const Plan& plan)
{
    return std::accumulate(plan.faults.begin(), plan.faults.end(), std::uint64_t{0});
}

std::vector<fs::directory_entry> entriesOf(const fs::path& folder)
{
    std::error_code missing;
    const fs::directory_iterator entries(folder, missing);
    return {begin(entries), end(entries)};
}

} // namespace

void Cycle::find(Finding finding, const std::string& what)
{
    constexpr std::uint64_t Table::*counts[] = {&Table::lost, &Table::mixed, &Table::answeredWrongly,
                                                &Table::leftBehind};
    constexpr const char* names[] = {"lost", "mixed", "answered wrongly", "left behind"};
    const auto index = static_cast<std::size_t>(finding);
    if (++(table_.*counts[index]) <= toldAtMost)
        std::fprintf(stderr, "%s, with --seed %llu --seconds 0, %s: %s\n", names[index],
                     static_cast<unsigned long long>(seed_), doing_.c_str(), what.c_str());
}

std::size_t Cycle::leftovers(std::string_view exception) const
{
    std::size_t count = 0;
    for (const auto& folder :
         {document_.path.parent_path(), folders_.records, folders_.pam.services, folders_.pam.backup})
        for (const auto& entry : entriesOf(folder))
            if (entry.path().extension() == ".new" &&
                entry.path().filename().string().find(exception) == std::string::npos)
                ++count;
    return count;
}

/// What was written and not brought to the disk is not there any more.
void Cycle::losePower()
{
    const auto& plan = *faults_.plan;
    const auto* const end = plan.unsynced.begin() + plan.unsyncedCount;
    for (const auto& folder :
         {document_.path.parent_path(), folders_.records, folders_.pam.services, folders_.pam.backup})
        for (const auto& entry : entriesOf(folder)) {
            struct stat status = {};
            if (::lstat(entry.path().c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
                std::find(plan.unsynced.begin(), end, status.st_ino) != end)
                fs::resize_file(entry.path(), 0);
        }
}

void Cycle::judge(const Operation& operation, const Expectation& expectation, const Victim::Result& result)
{
    const auto& plan = *faults_.plan;
    if (operation.kind >= Kind::WriteDocument && operation.kind != Kind::ReadRecord)
        ++table_.writes;
    judgeAnswer(expectation, result);
    const auto before = document_.state;
    const bool wasSilent = countOf(plan) == 0;
    std::vector<bool> isChanged;
    for (const auto& change : expectation.changes) {
        const auto old = change.file->state.text;
        judgeChange(change, result);
        isChanged.push_back(change.file->state.text != old);
    }
    if (isChanged.size() == 2 && isChanged[1] && !expectation.changes[0].orNot &&
        backups_.at(operation.which).state.text != expectation.changes[0].after.text)
        find(Finding::Lost, "an entry was changed without a backup");
    noteDocument(operation, before, result);
    judgeFiles();
    if (result.answer == Answer::Done && wasSilent && !expectation.changes.empty() && plan.unsyncedCount > 0)
        find(Finding::Lost, std::to_string(plan.unsyncedCount) + " files or folders were not brought to the disk");
    if (result.answer && areSweptUnder(plan) && leftovers() > leftBefore_)
        find(Finding::LeftBehind, "a new file");
}

/// Whether none of the calls failed by which a new file is found and removed.
bool Cycle::areSweptUnder(const Plan& plan) const
{
    constexpr Call needed[] = {Call::Open, Call::Unlink, Call::Lock, Call::Status, Call::OpenFolder, Call::ReadFolder};
    return std::all_of(std::begin(needed), std::end(needed),
                       [&plan](Call call) { return plan.faults[static_cast<std::size_t>(call)] == 0; });
}

void Cycle::judgeAnswer(const Expectation& expectation, const Victim::Result& result)
{
    if (result.hasCrashed)
        find(Finding::AnsweredWrongly, "the process has ended");
    if (result.hasLeaked)
        find(Finding::LeftBehind, "an open descriptor");
    if (!result.answer)
        return;
    const auto answer = *result.answer;
    const bool isExcused = answer == Answer::Failed && faults_.plan->excuses > 0;
    if (answer != expectation.answer && !isExcused)
        find(Finding::AnsweredWrongly, std::string(answerNames.at(static_cast<std::size_t>(answer))) + " where " +
                                           answerNames.at(static_cast<std::size_t>(expectation.answer)) + " was due");
}

void Cycle::judgeChange(const Change& change, const Victim::Result& result)
{
    auto& file = *change.file;
    const auto found = textAt(file.path);
    if (change.after.text == file.state.text)
        return;
    if (found == file.state.text && result.answer == Answer::Done && !change.orNot)
        find(Finding::AnsweredWrongly, "done, and not in " + file.path.string());
    if (found != change.after.text)
        return;
    if (result.answer && result.answer != Answer::Done && !change.withFailure)
        find(Finding::AnsweredWrongly, "not done, and there in " + file.path.string());
    file.state = change.after;
}

void Cycle::noteDocument(const Operation& operation, const State& before, const Victim::Result& result)
{
    const fs::path copy = document_.path.string() + ".invalid";
    if (operation.kind == Kind::ReadDocument) {
        wasReadingRefused_ = result.answer == Answer::Failed;
    } else if (operation.kind == Kind::WriteDocument && document_.state.number == operation.next) {
        if (kind_ == Document::Unreadable)
            document_.mode = newDocumentMode;
        wasReadingRefused_ = false;
        kind_ = Document::Valid;
    } else if (operation.kind == Kind::KeepInvalid) {
        isInvalidKept_ = result.answer == Answer::Done;
        if (isInvalidKept_ && textAt(copy) != before.text)
            find(Finding::Lost, "no copy in " + copy.string());
        if (isInvalidKept_ || !document_.state.text)
            kept_.push_back(*before.text);
        if (!document_.state.text) {
            kind_ = Document::Missing;
            document_.mode = newDocumentMode;
        }
    }
}

void Cycle::judgeFiles()
{
    for (auto* const files : {&services_, &backups_, &records_})
        for (auto& file : *files)
            judgeFile(file);
    judgeFile(document_);
    std::set<std::string> texts;
    if (!kept_.empty())
        for (const auto& entry : entriesOf(document_.path.parent_path()))
            texts.insert(textAt(entry).value_or(""));
    for (const auto& text : kept_)
        if (!texts.contains(text))
            find(Finding::Lost, "what had to be kept: " + text.substr(0, 30));
    // Told once.
    std::erase_if(kept_, [&texts](const auto& text) { return !texts.contains(text); });
}

void Cycle::judgeFile(File& file)
{
    const auto found = textAt(file.path);
    if (found != file.state.text) {
        find(!found || whole_.contains(*found) ? Finding::Lost : Finding::Mixed, file.path.string());
        file.state.text = found;
    }
    struct stat status = {};
    if (!found || !file.mode || ::stat(file.path.c_str(), &status) != 0)
        return;
    if ((status.st_mode & 07777) != *file.mode || status.st_gid != file.group.value_or(status.st_gid))
        find(Finding::Mixed, file.path.string() + " has another mode or group");
}

} // namespace vantro::torture
