#include "service/PamStore.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <utility>

#include "foundation/DurableFile.h"
#include "service/PamModule.h"
#include "service/PamStack.h"

namespace vantro::service {
namespace {

constexpr std::array<std::string_view, 3> ownServices = {"authorization", "screensaver", "screensaver_new"};
constexpr std::string_view ownModule = "pam_vantro_standalone.so";
constexpr std::size_t serviceSizeLimit = 65536;
constexpr std::size_t serviceCountLimit = 4096;
constexpr mode_t backupFolderMode = 0700;
constexpr mode_t backupMode = 0600;

RequestFailure inFile(const FileFailure& failure)
{
    switch (failure.kind) {
    case FileFailure::Kind::Missing:
        return {failure_reason::serviceFileMissing, failure.text};
    case FileFailure::Kind::DiskFull:
        return {failure_reason::diskFull, failure.text};
    case FileFailure::Kind::SystemError:
        return {failure_reason::writeFailed, failure.text};
    default:
        return {failure_reason::serviceFileUnusable, failure.text};
    }
}

RequestFailure inText(const std::filesystem::path& path, PamFailure failure)
{
    const bool isJump = failure == PamFailure::EntryInsideJump || failure == PamFailure::JumpSpansInclude;
    return {isJump ? failure_reason::jump : failure_reason::serviceFileUnusable,
            path.string() + ": " + std::string(describe(failure))};
}

/// What the settings tool asks for is all that anybody may: a token demanded beside the password, or not.
std::optional<RequestFailure> refusal(const PamSetting& setting)
{
    const auto refuse = [](const char* why) { return RequestFailure{failure_reason::notAccepted, why}; };
    if (std::find(ownServices.begin(), ownServices.end(), setting.fileName) == ownServices.end())
        return refuse("This service is not the add-on's to change.");
    if (setting.moduleName != ownModule)
        return refuse("This module is not the add-on's.");
    if (setting.moduleInterface != ModuleInterface::Auth)
        return refuse("The module takes part in authentication (auth) alone.");
    if (setting.controlFlag != ControlFlag::Required && setting.controlFlag != ControlFlag::Optional)
        return refuse("The entry may be required or optional, nothing else.");
    return std::nullopt;
}

} // namespace

PamStore::PamStore(Folders folders, const RegisteredKeys& keys, const Logger& logger)
    : folders_(std::move(folders)), keys_(keys), logger_(logger.inFile("PamStore"))
{
}

std::optional<RequestFailure> PamStore::save(const ArchiveData& setting)
{
    return change(setting, Action::Save);
}

std::optional<RequestFailure> PamStore::remove(const ArchiveData& setting)
{
    return change(setting, Action::Remove);
}

std::optional<RequestFailure> PamStore::change(const ArchiveData& archive, Action action)
{
    constexpr auto function = "change(_:action:)";
    const auto setting = PamSetting::unarchived(archive);
    if (!setting) {
        logger_.error("The request holds no PAM setting.", function);
        return RequestFailure{failure_reason::notAccepted, {}};
    }
    const bool isSaving = action == Action::Save;
    const std::lock_guard lock(mutex_);
    auto failure = refusal(*setting);
    if (!failure && isSaving && setting->controlFlag == ControlFlag::Required)
        failure = demandFailure(*setting);
    if (!failure) {
        const auto found = plan(*setting, action);
        failure = found ? carryOut(*found) : found.failure();
    }
    const std::string entry =
        pamKeyword(setting->moduleInterface) + " entry of " + setting->moduleName + " in " + setting->fileName;
    if (failure)
        logger_.error("The " + entry + " was not changed. " + failure->text, function);
    else
        logger_.info("The " + entry + (isSaving ? " is " + pamKeyword(setting->controlFlag) : " is removed") + ".",
                     function);
    return failure;
}

std::optional<RequestFailure> PamStore::demandFailure(const PamSetting& setting) const
{
    if (auto failure = moduleFailure(folders_.modules / setting.moduleName))
        return failure;
    const auto opensAnAccount = keys_.opensAnAccount();
    if (!opensAnAccount)
        return RequestFailure{failure_reason::documentUnreadable, opensAnAccount.failure().text};
    if (!*opensAnAccount)
        return RequestFailure{failure_reason::noKeyRegistered,
                              "No registered user or master key has a record; a mandatory entry would lock everybody "
                              "out. Register a token first."};
    for (const auto service : ownServices) {
        PamSetting same = setting;
        same.fileName = service;
        if (const auto found = plan(same, Action::Save); !found)
            return found.failure();
    }
    return std::nullopt;
}

Outcome<PamStore::Plan, RequestFailure> PamStore::plan(const PamSetting& setting, Action action) const
{
    if (const auto failure = folderFailure(folders_.services, writableByOthers))
        return inFile(*failure);
    const auto path = folders_.services / setting.fileName;
    auto found = readTrustedFile(path, writableByOthers, serviceSizeLimit);
    if (!found)
        return inFile(found.failure());
    const auto file = PamFile::parsed(found->content);
    if (!file)
        return inText(path, file.failure());
    const auto entry = file->entryOf(setting);
    if (!entry)
        return inText(path, entry.failure());
    const bool takesDemandBack = action == Action::Save && *entry && setting.controlFlag == ControlFlag::Optional;
    if (!takesDemandBack)
        if (auto failure = jumpFailure(*file, setting))
            return *failure;
    auto text = action == Action::Save ? file->withEntry(setting) : file->withoutEntry(setting);
    if (!text)
        return inText(path, text.failure());
    return Plan{path, std::move(*found), std::move(*text), takesDemandBack};
}

std::optional<RequestFailure> PamStore::carryOut(const Plan& plan) const
{
    if (plan.after == plan.before.content)
        return std::nullopt;
    if (auto failure = keep(plan)) {
        if (!plan.takesDemandBack)
            return failure;
        logger_.warning("The text from before the change is not kept. " + failure->text, "carryOut(_:)");
    }
    const auto written = replaceFile(plan.path, plan.after, {plan.before.mode, {}, plan.before.group, {}});
    if (!written.isDone)
        return inFile(systemFailure(plan.path, written.error.value()));
    warnUnlessDurable(logger_, plan.path, written);
    return std::nullopt;
}

std::optional<RequestFailure> PamStore::jumpFailure(const PamFile& file, const PamSetting& setting) const
{
    const auto services = readServices();
    const PamStack stack(folders_.services, [&services](const std::string& name) {
        const auto service = services.find(name);
        return service == services.end() ? nullptr : &service->second;
    });
    if (const auto failure = stack.ownJumpFailure(file, setting))
        return inText(folders_.services / setting.fileName, *failure);
    for (const auto& [name, service] : services)
        if (const auto failure = stack.includerJumpFailure(service, setting))
            return inText(folders_.services / name, *failure);
    return std::nullopt;
}

std::map<std::string, PamFile> PamStore::readServices() const
{
    std::map<std::string, PamFile> services;
    std::error_code error;
    std::filesystem::directory_iterator entries(folders_.services, error);
    for (; !error && entries != std::filesystem::directory_iterator() && services.size() < serviceCountLimit;
         entries.increment(error)) {
        std::error_code readError;
        const auto text = readFile(entries->path(), serviceSizeLimit, readError);
        auto file = text ? PamFile::parsed(*text) : Outcome<PamFile, PamFailure>(PamFailure::ZeroByte);
        if (file)
            services.emplace(entries->path().filename(), std::move(*file));
    }
    return services;
}

std::optional<RequestFailure> PamStore::keep(const Plan& plan) const
{
    const auto told = [](const FileFailure& failure) {
        return RequestFailure{failure.kind == FileFailure::Kind::DiskFull ? failure_reason::diskFull
                                                                          : failure_reason::writeFailed,
                              failure.text};
    };
    if (::mkdir(folders_.backup.c_str(), backupFolderMode) != 0 && errno != EEXIST)
        return told(systemFailure(folders_.backup, errno));
    if (const auto failure = folderFailure(folders_.backup, openToOthers))
        return told(*failure);
    const auto path = folders_.backup / plan.path.filename();
    const auto written = replaceFile(path, plan.before.content, {backupMode, {}, {}, {}});
    return written.isDone ? std::nullopt : std::optional(told(systemFailure(path, written.error.value())));
}

} // namespace vantro::service
