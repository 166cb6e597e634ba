#include "Cycle.h"

#include <iterator>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

#include "VantroStandaloneNames.h"
#include "VantroStandaloneSetting/SettingText.h"
#include "support/TemporaryFolder.h"

namespace vantro::torture {
namespace {

namespace fs = std::filesystem;

constexpr mode_t privateMode = 0600;
constexpr std::uint64_t requiredEntry = 1;
constexpr std::uint64_t optionalEntry = 2;

constexpr std::array kindNames = {"start",         "read document", "write document", "keep invalid",
                                  "save required", "save optional", "remove entry",   "read record",
                                  "write record",  "renew record",  "remove record"};

/// What another program has put into the settings document.
const ForeignContent& foreignContent()
{
    static const ForeignContent foreign = [] {
        std::string text = serialised({});
        text.insert(text.rfind("</"),
                    "<!-- of another program --><other:element is=\"there\"> &amp; stays</other:element>");
        return readSettingWithForeign(XML::parse(text)).foreign;
    }();
    return foreign;
}

} // namespace

Cycle::Cycle(const Folders& folders, fs::path document, const Logger& logger, Faults& faults, std::uint64_t seed,
             Table& table)
    : folders_(folders), logger_(logger), faults_(faults), seed_(seed), table_(table), random_(seed)
{
    for (const auto& folder : {document.parent_path(), folders_.records, folders_.pam.services})
        for (const auto& entry : fs::directory_iterator(folder))
            fs::remove_all(entry);
    fs::remove_all(folders_.pam.backup);

    document_.path = std::move(document);
    makeDocument();
    for (std::size_t which = 0; which < services_.size(); ++which) {
        const auto name = names::pamServices.at(which);
        for (auto lines = below(60); lines > 0; --lines)
            heads_[which] += "# What others have written " + std::to_string(random_()) + "\n";
        services_[which].path = folders_.pam.services / name;
        constexpr mode_t modes[] = {0600, 0640, 0644};
        make(services_[which], entryOf(which, below(3)), modes[below(std::size(modes))]);
        if (::geteuid() == 0)
            ::chown(services_[which].path.c_str(), 0, static_cast<gid_t>(below(3)));
        struct stat status = {};
        ::stat(services_[which].path.c_str(), &status);
        services_[which].group = status.st_gid;
        backups_[which].path = folders_.pam.backup / name;
        backups_[which].mode = privateMode;
        records_[which].path = folders_.records / std::to_string(which + 1);
        make(records_[which], record(which, nextNumber_++), privateMode);
    }
    isJumpedOver_ = services_[0].state.number == noContent && below(3) == 0;
    if (isJumpedOver_)
        tests::writeFile(folders_.pam.services / "login",
                         "auth [success=1 default=ignore] pam_unix.so\n@include authorization\n");
}

void Cycle::make(File& file, State state, mode_t mode)
{
    tests::writeFile(file.path, *state.text, mode);
    whole_.insert(*state.text);
    file.state = std::move(state);
    file.mode = mode;
}

void Cycle::makeDocument()
{
    const auto& path = document_.path;
    const auto elsewhere = path.parent_path().parent_path() / "elsewhere";
    constexpr mode_t modes[] = {0600, 0640, 0660, 0666};
    const auto mode = modes[below(std::size(modes))];
    document_.mode = newDocumentMode;
    switch (below(8)) {
    case 0:
        kind_ = Document::Missing;
        break;
    case 1:
    case 2:
        kind_ = Document::Invalid;
        make(document_, {"<no document" + std::string(below(3000), ' '), invalidContent}, mode);
        if (below(2) == 0) {
            kept_.emplace_back("one that was kept before");
            tests::writeFile(path.string() + ".invalid", kept_.back());
        }
        break;
    case 3:
        kind_ = Document::Unreadable;
        make(document_, {"what lies elsewhere", invalidContent}, mode);
        document_.mode.reset();
        kept_.push_back(*document_.state.text);
        fs::rename(path, elsewhere);
        if (below(2) == 0)
            fs::create_symlink(elsewhere, path);
        else
            fs::create_hard_link(elsewhere, path);
        break;
    default:
        hasForeign_ = true;
        make(document_, documentOf(nextNumber_++), mode);
    }
}

Cycle::State Cycle::documentOf(std::uint64_t number) const
{
    return {hasForeign_ ? serialised(settingOf(number), foreignContent()) : serialised(settingOf(number)), number};
}

/// Made here and not by the product, so that a byte of others that it changes is seen.
Cycle::State Cycle::entryOf(std::size_t service, std::uint64_t number) const
{
    std::string text = heads_[service];
    if (number != noContent)
        text += std::string("auth\t") + (number == requiredEntry ? "required" : "optional") +
                "\tpam_vantro_standalone.so\n";
    return {text + "auth required pam_permit.so # \xff\t\nsession optional pam_permit.so", number};
}

Cycle::State Cycle::record(std::size_t which, std::uint64_t number)
{
    return {recordOf(which, number).formatted(), number};
}

void Cycle::run()
{
    ++table_.cycles;
    for (auto lives = 1 + below(3); lives > 0; --lives)
        liveUnderFaults();
    liveCalmly();
}

/// The start of the service and of the tool.
void Cycle::begin(Victim& victim)
{
    wasReadingRefused_ = false;
    isInvalidKept_ = false;
    perform(victim, {Kind::Start});
}

void Cycle::liveUnderFaults()
{
    // None, several of an operation's, or one.
    constexpr unsigned int odds[] = {8, 30, 100};
    odds_ = below(4) == 0 ? odds[below(std::size(odds))] : 0;
    hasOneFault_ = odds_ == 0 && below(4) != 0;
    const auto kill = static_cast<Victim::Kill>(below(3));
    Victim victim(folders_, logger_, faults_);
    begin(victim);
    bool isAlive = perform(victim, {Kind::ReadDocument});
    for (auto operations = 1 + below(8); isAlive && operations > 0; --operations)
        isAlive = perform(victim, anyOperation(), operations == 1 ? kill : Victim::Kill::No);
}

/// Whatever came before, everything can be written now, and nothing is left of what was begun.
void Cycle::liveCalmly()
{
    odds_ = 0;
    hasOneFault_ = false;
    Victim victim(folders_, logger_, faults_);
    begin(victim);
    bool isAlive = perform(victim, {Kind::ReadDocument});
    while (isAlive && kind_ == Document::Invalid && !isInvalidKept_)
        isAlive = perform(victim, {Kind::KeepInvalid});
    isAlive = isAlive && perform(victim, {Kind::WriteDocument});
    for (const auto kind : {Kind::WriteRecord, Kind::SaveOptional, Kind::RemoveEntry})
        for (std::size_t which = 0; isAlive && which < services_.size(); ++which)
            isAlive = perform(victim, {kind, which});
    // A copy that was begun is in nobody's way once what was to be copied has been moved.
    if (leftovers(".xml.invalid.") != 0)
        find(Finding::LeftBehind, std::to_string(leftovers()) + " new files at the end");
}

Operation Cycle::anyOperation()
{
    constexpr Kind kinds[] = {Kind::SaveRequired, Kind::SaveOptional, Kind::RemoveEntry, Kind::ReadRecord,
                              Kind::WriteRecord,  Kind::RenewRecord,  Kind::RemoveRecord};
    if (below(3) == 0)
        return documentOperation();
    const auto kind = kinds[below(std::size(kinds))];
    // The first token's record stays, or nothing could be demanded.
    return {kind, kind == Kind::RemoveRecord ? 1 + below(2) : below(3)};
}

Operation Cycle::documentOperation()
{
    if (below(4) == 0)
        return {Kind::ReadDocument};
    return {kind_ == Document::Invalid && !isInvalidKept_ ? Kind::KeepInvalid : Kind::WriteDocument};
}

Cycle::Expectation Cycle::expected(const Operation& operation, bool isFaulty)
{
    auto& file = records_.at(operation.which);
    switch (operation.kind) {
    case Kind::Start:
    case Kind::ReadRecord:
        return {};
    case Kind::ReadDocument:
        return {kind_ == Document::Unreadable ? Answer::Failed : Answer::Done};
    case Kind::WriteDocument:
        // What nobody could read is not overwritten.
        if (wasReadingRefused_ && (kind_ == Document::Valid || kind_ == Document::Invalid))
            return {Answer::Failed};
        return {Answer::Done, {{&document_, documentOf(operation.next)}}};
    case Kind::KeepInvalid:
        // Where it can't be copied, it is moved.
        return isFaulty ? Expectation{Answer::Done, {{&document_, {}, false, true}}} : Expectation{};
    case Kind::WriteRecord:
        return {Answer::Done, {{&file, record(operation.which, operation.next)}}};
    case Kind::RenewRecord:
        if (file.state.number == noContent || file.state.number != operation.known)
            return {Answer::No};
        return {Answer::Done, {{&file, record(operation.which, operation.next)}}};
    case Kind::RemoveRecord:
        return {file.state.text ? Answer::Done : Answer::No, {{&file, {}}}};
    case Kind::SaveRequired:
    case Kind::SaveOptional:
    case Kind::RemoveEntry:
        return expectedEntry(operation, isFaulty);
    }
    return {};
}

Cycle::Expectation Cycle::expectedEntry(const Operation& operation, bool isFaulty)
{
    auto& file = services_.at(operation.which);
    const bool isRelaxing = operation.kind == Kind::SaveOptional;
    std::uint64_t entry = noContent;
    if (operation.kind != Kind::RemoveEntry)
        entry = isRelaxing ? optionalEntry : requiredEntry;
    if (isJumpedOver_ && entry == requiredEntry)
        return {Answer::Failed};
    if (file.state.number == entry || (isJumpedOver_ && operation.which == 0))
        return {};
    // What demands nothing may be left out where somebody may jump over it, and need not be kept.
    return {
        Answer::Done,
        {{&backups_.at(operation.which), file.state, true, isRelaxing && isFaulty},
         {&file, entryOf(operation.which, entry), false, isRelaxing && isFaulty && file.state.number == noContent}}};
}

bool Cycle::perform(Victim& victim, Operation operation, Victim::Kill kill)
{
    if (operation.kind >= Kind::ReadRecord)
        operation.known = records_.at(operation.which).state.number;
    else if (kind_ != Document::Unreadable)
        operation.known = document_.state.number;
    operation.next = nextNumber_++;
    if (operation.kind == Kind::RenewRecord && below(3) == 0)
        operation.known = operation.next;
    doing_ = kindNames.at(static_cast<std::size_t>(operation.kind)) + (" " + std::to_string(operation.which));

    auto& plan = *faults_.plan;
    plan = {};
    plan.random = random_() | 1;
    plan.odds = odds_;
    // Some kinds of call are too rare to be met by counting.
    if (hasOneFault_ && below(2) == 0)
        plan.kindOfFault = below(callCount);
    else if (hasOneFault_)
        plan.callOfFault = static_cast<unsigned int>(1 + below(std::uint64_t{8} << below(6)));
    if (kill == Victim::Kill::AtACall)
        plan.callOfKill = static_cast<unsigned int>(1 + below(60));
    leftBefore_ = leftovers();
    // Operations take very different times, and their beginnings are where the short ones have most of their calls.
    const auto microseconds = below(std::uint64_t{1} << below(14));
    const auto result = victim.carryOut(operation, kill, static_cast<unsigned int>(microseconds));
    std::uint64_t count = 0;
    for (std::size_t call = 0; call < callCount; ++call) {
        table_.faults[call] += plan.faults[call];
        count += plan.faults[call];
    }
    if (!result.isAlive) {
        ++table_.kills;
        if (below(2) == 0)
            losePower();
    }
    const auto expectation = expected(operation, count > 0);
    for (const auto& change : expectation.changes)
        if (change.after.text)
            whole_.insert(*change.after.text);
    judge(operation, expectation, result);
    return result.isAlive;
}

} // namespace vantro::torture
