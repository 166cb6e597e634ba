#include "tokens/RecordStore.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "LoggerManager/DurabilityWarning.h"
#include "foundation/DurableFile.h"
#include "foundation/FileDescriptor.h"
#include "foundation/LastError.h"
#include "foundation/Text.h"

namespace vantro::service {
namespace {

constexpr std::size_t recordSizeLimit = 4096;
constexpr mode_t recordMode = 0600;

} // namespace

std::filesystem::path RecordStore::fileOf(std::uint64_t serial) const
{
    return folder_ / std::to_string(serial);
}

std::optional<FileFailure> RecordStore::folderFailure() const
{
    auto failure = vantro::folderFailure(folder_, openToOthers);
    if (failure && failure->kind == FileFailure::Kind::Missing)
        failure->text += " Make the folder for the records, owned by the service's account, with mode 0700.";
    return failure;
}

std::optional<FileFailure> RecordStore::writeFailure(std::uint64_t serial) const
{
    if (auto failure = folderFailure())
        return failure;
    const auto path = fileOf(serial);
    struct stat status = {};
    if (::lstat(path.c_str(), &status) != 0)
        return errno == ENOENT ? std::nullopt : std::optional(systemFailure(path, lastError()));
    if (S_ISLNK(status.st_mode))
        return FileFailure{FileFailure::Kind::SymbolicLink, path.string() + " is a symbolic link; remove it."};
    if (!S_ISREG(status.st_mode))
        return FileFailure{FileFailure::Kind::WrongType, path.string() + " is no regular file; remove it."};
    if (status.st_uid != ::geteuid())
        return FileFailure{FileFailure::Kind::WrongOwner, path.string() + " belongs to somebody else; remove it."};
    return std::nullopt;
}

std::optional<FileFailure> RecordStore::replace(const ChallengeRecord& record) const
{
    const auto path = fileOf(record.serial);
    const auto written = replaceFile(path, record.formatted(), {recordMode, {}, {}, {}});
    if (!written.isDone)
        return systemFailure(path, written.error);
    warnUnlessDurable(logger_, path, written, "replace(_:)");
    return std::nullopt;
}

void RecordStore::removeUnfinished()
{
    const std::lock_guard lock(mutex_);
    removeUnfinishedReplacements(folder_, [](std::string_view name) { return parseUInt64(name).has_value(); });
}

std::optional<FileFailure> RecordStore::write(const ChallengeRecord& record)
{
    const std::lock_guard lock(mutex_);
    if (auto failure = writeFailure(record.serial))
        return failure;
    return replace(record);
}

Outcome<bool, FileFailure> RecordStore::renew(const ChallengeRecord& known, const ChallengeRecord& renewed)
{
    const std::lock_guard lock(mutex_);
    const auto current = read(known.serial);
    if (!current && current.failure().kind != FileFailure::Kind::Missing)
        return current.failure();
    if (!current || !(*current == known))
        return false;
    if (const auto failure = replace(renewed))
        return *failure;
    return true;
}

Outcome<ChallengeRecord, FileFailure> RecordStore::read(std::uint64_t serial) const
{
    if (const auto failure = folderFailure())
        return *failure;
    const auto path = fileOf(serial);
    const auto file = readTrustedFile(path, openToOthers, recordSizeLimit);
    if (!file)
        return file.failure();
    const auto record = ChallengeRecord::parsed(file->content);
    if (!record || record->serial != serial)
        return FileFailure{FileFailure::Kind::BadContent, path.string() + " is no record of this token."};
    return *record;
}

Outcome<bool, FileFailure> RecordStore::remove(std::uint64_t serial)
{
    const std::lock_guard lock(mutex_);
    if (const auto failure = folderFailure())
        return *failure;
    const auto path = fileOf(serial);
    if (::unlink(path.c_str()) != 0)
        return errno == ENOENT ? Outcome<bool, FileFailure>(false) : systemFailure(path, lastError());
    const FileDescriptor folder(::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const bool isDurable = folder && ::fsync(folder.get()) == 0;
    warnUnlessDurable(logger_, folder_, {true, isDurable ? std::error_code() : lastError()}, "remove(_:)");
    return true;
}

} // namespace vantro::service
