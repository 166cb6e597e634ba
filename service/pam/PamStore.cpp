#include "pam/PamStore.h"

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <system_error>
#include <utility>

#include "LoggerManager/DurabilityWarning.h"
#include "VantroStandaloneNames.h"
#include "VantroStandalonePam/PamFile.h"
#include "VantroStandalonePam/PamStack.h"
#include "foundation/DurableFile.h"
#include "foundation/LastError.h"
#include "foundation/TrustedFile.h"
#include "pam/PamModule.h"

namespace vantro::service {
namespace {

constexpr mode_t backupFolderMode = 0700;
constexpr mode_t backupMode = 0600;

bool isOwnService(std::string_view name)
{
    return std::find(names::pamServices.begin(), names::pamServices.end(), name) != names::pamServices.end();
}

RequestFailure failureOf(const FileFailure& failure, std::string_view usual)
{
    return {failure.kind == FileFailure::Kind::DiskFull ? failure_reason::diskFull : usual, failure.text};
}

RequestFailure serviceFailureOf(const FileFailure& failure)
{
    return failureOf(failure, failure.kind == FileFailure::Kind::Missing ? failure_reason::serviceFileMissing
                                                                         : failure_reason::serviceFileUnusable);
}

RequestFailure writeFailureOf(const FileFailure& failure)
{
    return failureOf(failure, failure_reason::writeFailed);
}

RequestFailure pamFailureOf(const std::filesystem::path& path, PamFailure failure)
{
    auto reason = failure_reason::serviceFileUnusable;
    if (failure == PamFailure::EntryInsideJump || failure == PamFailure::JumpSpansInclude)
        reason = failure_reason::jump;
    else if (failure == PamFailure::IncluderUnreadable)
        reason = failure_reason::includerUnreadable;
    return {reason, path.string() + ": " + std::string(textOf(failure))};
}

/// Says why the service does not do what is asked: it is nothing that the tool asks for.
std::optional<RequestFailure> acceptanceFailure(const PamSetting& setting)
{
    const auto refused = [](const char* text) { return RequestFailure{failure_reason::notAccepted, text}; };
    if (!isOwnService(setting.fileName))
        return refused("This service is not the add-on's to change.");
    if (setting.moduleName != names::pamModule)
        return refused("This module is not the add-on's.");
    if (setting.moduleInterface != ModuleInterface::Auth)
        return refused("The add-on takes part in authenticating alone.");
    if (setting.controlFlag != ControlFlag::Required && setting.controlFlag != ControlFlag::Optional)
        return refused("The add-on's entry is required or optional.");
    return std::nullopt;
}

} // namespace

bool PamStore::isRelaxing(const PamSetting& setting, Request request)
{
    return request == Request::Save && setting.controlFlag == ControlFlag::Optional;
}

PamStore::PamStore(Folders folders, const RegisteredKeys& registeredKeys, const Logger& logger)
    : folders_(std::move(folders)), registeredKeys_(registeredKeys), logger_(logger.inFile("PamStore"))
{
}

void PamStore::removeUnfinished()
{
    const std::lock_guard lock(mutex_);
    for (const auto& folder : {folders_.services, folders_.backup})
        removeUnfinishedReplacements(folder, isOwnService);
}

std::optional<RequestFailure> PamStore::save(const ArchiveData& setting)
{
    return carryOut(setting, "save(_:)", Request::Save);
}

std::optional<RequestFailure> PamStore::remove(const ArchiveData& setting)
{
    return carryOut(setting, "remove(_:)", Request::Remove);
}

std::optional<RequestFailure> PamStore::carryOut(const ArchiveData& archive, std::string_view function, Request request)
{
    const auto setting = PamSetting::unarchived(archive);
    if (!setting) {
        logger_.error("The request holds no PAM setting.", function);
        return RequestFailure{failure_reason::notAccepted, "The request holds no PAM setting."};
    }
    const std::string entry =
        pamKeyword(setting->moduleInterface) + " entry of " + setting->moduleName + " in " + setting->fileName;
    const std::lock_guard lock(mutex_);
    auto failure = acceptanceFailure(*setting);
    if (!failure)
        failure = apply(*setting, request);
    if (failure)
        logger_.error("The " + entry + " was not changed. " + failure->text, function);
    else
        logger_.info("The " + entry +
                         (request == Request::Save ? " is " + pamKeyword(setting->controlFlag) : " is removed") + ".",
                     function);
    return failure;
}

std::optional<RequestFailure> PamStore::apply(const PamSetting& setting, Request request)
{
    const auto change = prepare(setting, request);
    if (!change)
        return change.failure();
    // Also where it stands already: a demand that locks everybody out is not to be confirmed.
    if (request == Request::Save && setting.controlFlag == ControlFlag::Required)
        if (auto failure = demandFailure(setting))
            return failure;
    if (change->text == change->found.content)
        return std::nullopt;
    if (auto failure = writeBackup(*change)) {
        if (!isRelaxing(setting, request))
            return failure;
        logger_.warning("What was there is not kept. " + failure->text, "apply(_:request:)");
    }
    const auto written = replaceFile(change->path, change->text, {change->found.mode, {}, change->found.group, {}});
    if (!written.isDone)
        return writeFailureOf(systemFailure(change->path, written.error));
    warnUnlessDurable(logger_, change->path, written, "apply(_:request:)");
    return std::nullopt;
}

std::optional<RequestFailure> PamStore::demandFailure(const PamSetting& setting) const
{
    if (auto failure = pamModuleFailure(folders_.modules / setting.moduleName))
        return failure;
    const auto opensAnAccount = registeredKeys_.opensAnAccount();
    if (!opensAnAccount)
        return RequestFailure{failure_reason::documentUnreadable, opensAnAccount.failure().text};
    if (!*opensAnAccount)
        return RequestFailure{failure_reason::noKeyRegistered,
                              "No user or master key is registered; register one before tokens are demanded."};
    for (const auto service : names::pamServices) {
        auto other = setting;
        other.fileName = service;
        if (const auto change = prepare(other, Request::Save); !change)
            return change.failure();
    }
    return std::nullopt;
}

Outcome<PamStore::Change, RequestFailure> PamStore::prepare(const PamSetting& setting, Request request) const
{
    if (const auto failure = folderFailure(folders_.services, writableByOthers))
        return serviceFailureOf(*failure);
    const auto path = folders_.services / setting.fileName;
    const auto found = readTrustedFile(path, writableByOthers, pamServiceSizeLimit);
    if (!found)
        return serviceFailureOf(found.failure());
    const PamFile file(found->content);
    const auto text = request == Request::Save ? file.withEntry(setting) : file.withoutEntry(setting);
    if (!text)
        return pamFailureOf(path, text.failure());
    const Change change{path, *found, *text};
    if (change.text == found->content || (isRelaxing(setting, request) && file.hasEntryOf(setting)))
        return change;
    auto failure = jumpFailure(setting, request == Request::Save ? change.text : found->content);
    if (!failure)
        return change;
    if (!isRelaxing(setting, request))
        return *failure;
    logger_.warning("No entry was put into " + setting.fileName + ", which demands nothing without one. " +
                        failure->text,
                    "prepare(_:request:)");
    return Change{path, *found, found->content};
}

std::optional<RequestFailure> PamStore::jumpFailure(const PamSetting& setting, const std::string& text) const
{
    PamServices services(folders_.services, folders_.vendorServices);
    const auto ownPath = folders_.services / setting.fileName;
    services.assume(ownPath, text);
    const auto* const own = services.at(ownPath);
    const auto isPlace = [own, &setting](const PamStack::Step& step) {
        return step.file == own && PamFile::isEntryOf(setting, *step.entry);
    };
    for (const auto& [name, service] : services.all()) {
        const PamStack stack(*service.file, folders_.services,
                             [&services](const std::filesystem::path& path) { return services.at(path); });
        const bool isIncluder = stack.holds(isPlace);
        if (isIncluder && stack.isJumpedOver(isPlace))
            return pamFailureOf(service.path,
                                service.file == own ? PamFailure::EntryInsideJump : PamFailure::JumpSpansInclude);
        if (stack.reading() == PamReading::Unknown || (isIncluder && stack.reading() != PamReading::Whole))
            return pamFailureOf(service.path, PamFailure::IncluderUnreadable);
    }
    return std::nullopt;
}

std::optional<RequestFailure> PamStore::writeBackup(const Change& change)
{
    if (::mkdir(folders_.backup.c_str(), backupFolderMode) != 0 && errno != EEXIST)
        return writeFailureOf(systemFailure(folders_.backup, lastError()));
    if (const auto failure = folderFailure(folders_.backup, openToOthers))
        return writeFailureOf(*failure);
    const auto path = folders_.backup / change.path.filename();
    const auto written = replaceFile(path, change.found.content, {backupMode, {}, {}, {}});
    return written.isDone ? std::nullopt : std::optional(writeFailureOf(systemFailure(path, written.error)));
}

} // namespace vantro::service
