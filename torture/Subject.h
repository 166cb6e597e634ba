#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "LoggerManager/Logger.h"
#include "VantroStandaloneSetting/SettingFile.h"
#include "pam/PamStore.h"
#include "tokens/RecordStore.h"
#include "tokens/RegisteredKeys.h"

namespace vantro::torture {

enum class Kind
{
    Start,
    ReadDocument,
    WriteDocument,
    KeepInvalid,
    SaveRequired,
    SaveOptional,
    RemoveEntry,
    ReadRecord,
    WriteRecord,
    RenewRecord,
    RemoveRecord
};

/// One operation of the product's. Contents are told by their numbers.
struct Operation
{
    Kind kind = Kind::Start;
    /// Which of the PAM services or of the tokens.
    std::size_t which = 0;
    /// What is on the disk: noContent, invalidContent, or a number that settingOf() or recordOf() takes.
    std::uint64_t known = 0;
    /// What is to be written.
    std::uint64_t next = 0;
};
inline constexpr std::uint64_t noContent = 0;
inline constexpr std::uint64_t invalidContent = 1;
inline constexpr std::uint64_t firstContent = 2;

enum class Answer
{
    Done,
    /// There is nothing to do it with: no record, or another one by now.
    No,
    Failed,
    /// A reading succeeded and gave what is not there.
    Untrue
};

/// The settings document and the record that a number stands for.
[[nodiscard]] VantroStandaloneSetting settingOf(std::uint64_t number);
[[nodiscard]] service::ChallengeRecord recordOf(std::size_t which, std::uint64_t number);

struct Folders
{
    service::PamStore::Folders pam;
    std::filesystem::path records;
    /// The document in which the service looks for keys; it names the first token's.
    std::filesystem::path keys;
};

/// The product's code as the tool and the service use it from their start on. Its answers are those to the callers.
class Subject
{
  public:
    Subject(const Folders& folders, const Logger& logger);

    [[nodiscard]] Answer carryOut(const Operation& operation);

  private:
    [[nodiscard]] Answer readDocument(std::uint64_t known);
    [[nodiscard]] Answer changeEntry(const Operation& operation);
    [[nodiscard]] Answer readRecord(const Operation& operation);

    SettingFile document_;
    service::RecordStore records_;
    service::RegisteredKeys keys_;
    service::PamStore pam_;
};

} // namespace vantro::torture
