#include "service/PamStore.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <sys/stat.h>
#include <system_error>
#include <utility>

#include "foundation/DurableFile.h"
#include "service/PamStack.h"
#include "service/TrustedFile.h"

namespace vantro::service {
namespace {

constexpr std::array<std::string_view, 3> ownServices = {"authorization", "screensaver", "screensaver_new"};
constexpr std::string_view ownModule = "pam_vantro_standalone.so";
constexpr std::size_t serviceSizeLimit = 65536;
constexpr std::size_t serviceCountLimit = 4096;
constexpr mode_t backupFolderMode = 0700;
constexpr mode_t backupMode = 0600;

bool isMandatory(ControlFlag flag)
{
    return flag == ControlFlag::Required || flag == ControlFlag::Requisite;
}

} // namespace

PamStore::PamStore(Folders folders, const Logger& logger)
    : folders_(std::move(folders)), logger_(logger.inFile("PamStore"))
{
}

bool PamStore::save(const ArchiveData& setting)
{
    return change(setting, "save(_:)", true);
}

bool PamStore::remove(const ArchiveData& setting)
{
    return change(setting, "remove(_:)", false);
}

bool PamStore::change(const ArchiveData& archive, std::string_view function, bool isSaving)
{
    const auto setting = PamSetting::unarchived(archive);
    if (!setting) {
        logger_.error("The request holds no PAM setting.", function);
        return false;
    }
    const std::string entry =
        pamKeyword(setting->moduleInterface) + " entry of " + setting->moduleName + " in " + setting->fileName;
    const std::lock_guard lock(mutex_);
    if (const auto failure = changeFailure(*setting, isSaving)) {
        logger_.error("The " + entry + " was not changed. " + *failure, function);
        return false;
    }
    logger_.info("The " + entry + (isSaving ? " is " + pamKeyword(setting->controlFlag) : " is removed") + ".",
                 function);
    return true;
}

std::optional<std::string> PamStore::changeFailure(const PamSetting& setting, bool isSaving) const
{
    if (std::find(ownServices.begin(), ownServices.end(), setting.fileName) == ownServices.end())
        return "This service is not the add-on's to change.";
    if (setting.moduleName != ownModule)
        return "This module is not the add-on's.";
    struct stat status = {};
    const auto module = folders_.modules / setting.moduleName;
    if (isSaving && isMandatory(setting.controlFlag) &&
        (::stat(module.c_str(), &status) != 0 || !S_ISREG(status.st_mode)))
        return module.string() + " is not installed; a mandatory entry would lock everybody out.";
    if (const auto failure = folderFailure(folders_.services, writableByOthers))
        return failure->text;

    const auto path = folders_.services / setting.fileName;
    const auto found = readTrustedFile(path, writableByOthers, serviceSizeLimit);
    if (!found)
        return found.failure().text;
    const auto file = PamFile::parsed(found->content);
    if (!file)
        return path.string() + ": " + std::string(describe(file.failure()));
    if (auto failure = jumpFailure(*file, setting))
        return failure;
    const auto text = isSaving ? file->withEntry(setting) : file->withoutEntry(setting);
    if (!text)
        return path.string() + ": " + std::string(describe(text.failure()));
    if (*text == found->content)
        return std::nullopt;
    if (auto failure = keep(setting.fileName, found->content))
        return failure;
    const auto error = replaceFile(path, *text, {found->mode, {}, found->group});
    return error ? std::optional(systemFailure(path, error.value()).text) : std::nullopt;
}

std::optional<std::string> PamStore::jumpFailure(const PamFile& file, const PamSetting& setting) const
{
    const auto services = readServices();
    const PamStack stack(folders_.services, [&services](const std::string& name) {
        const auto service = services.find(name);
        return service == services.end() ? nullptr : &service->second;
    });
    const auto told = [this](const std::string& name, PamFailure failure) {
        return (folders_.services / name).string() + ": " + std::string(describe(failure));
    };
    if (const auto failure = stack.ownJumpFailure(file, setting))
        return told(setting.fileName, *failure);
    for (const auto& [name, service] : services)
        if (const auto failure = stack.includerJumpFailure(service, setting))
            return told(name, *failure);
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

std::optional<std::string> PamStore::keep(const std::string& name, const std::string& text) const
{
    if (::mkdir(folders_.backup.c_str(), backupFolderMode) != 0 && errno != EEXIST)
        return systemFailure(folders_.backup, errno).text;
    if (const auto failure = folderFailure(folders_.backup, openToOthers))
        return failure->text;
    const auto path = folders_.backup / name;
    const auto error = replaceFile(path, text, {backupMode, {}, {}});
    return error ? std::optional(systemFailure(path, error.value()).text) : std::nullopt;
}

} // namespace vantro::service
