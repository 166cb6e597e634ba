#include "Subject.h"

#include <algorithm>
#include <random>
#include <system_error>

#include "VantroStandaloneNames.h"
#include "VantroStandaloneSetting/PamSetting.h"

namespace vantro::torture {
namespace {

template <class Value, class Failure>
Answer answerOf(const Outcome<Value, Failure>& outcome)
{
    if (!outcome)
        return Answer::Failed;
    return *outcome ? Answer::Done : Answer::No;
}

template <class Failure>
Answer answerOf(const std::optional<Failure>& failure)
{
    return failure ? Answer::Failed : Answer::Done;
}

} // namespace

VantroStandaloneSetting settingOf(std::uint64_t number)
{
    std::mt19937_64 random(number);
    VantroStandaloneSetting setting;
    for (auto users = random() % 10; users > 0; --users) {
        auto& user = setting.users.emplace_back("account" + std::to_string(users));
        for (auto keys = random() % 20; keys > 0; --keys)
            user.keys.emplace_back(random() | 1);
    }
    setting.masterKeySetting.masterKeys.emplace_back(number);
    return setting;
}

service::ChallengeRecord recordOf(std::size_t which, std::uint64_t number)
{
    std::mt19937_64 random(number);
    const auto fill = [&random](auto& bytes) {
        std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<std::uint8_t>(random()); });
    };
    service::ChallengeRecord record;
    record.serial = which + 1;
    fill(record.challenge);
    fill(record.salt);
    fill(record.hash);
    return record;
}

Subject::Subject(const Folders& folders, const Logger& logger)
    : records_(folders.records, logger), keys_(folders.keys, records_), pam_(folders.pam, keys_, logger)
{
}

Answer Subject::carryOut(const Operation& operation)
{
    switch (operation.kind) {
    case Kind::Start:
        records_.removeUnfinished();
        pam_.removeUnfinished();
        return Answer::Done;
    case Kind::ReadDocument:
        return readDocument(operation.known);
    case Kind::WriteDocument: {
        auto answer = Answer::Done;
        const auto observation = NotificationCenter::defaultCenter().addObserver(
            DocumentNotWritten, [&answer](const Notification&) { answer = Answer::Failed; });
        document_.write(settingOf(operation.next));
        return answer;
    }
    case Kind::KeepInvalid:
        return document_.keepInvalid() ? Answer::Failed : Answer::Done;
    case Kind::SaveRequired:
    case Kind::SaveOptional:
    case Kind::RemoveEntry:
        return changeEntry(operation);
    case Kind::ReadRecord:
        return readRecord(operation);
    case Kind::WriteRecord:
        return answerOf(records_.write(recordOf(operation.which, operation.next)));
    case Kind::RenewRecord:
        return answerOf(
            records_.renew(recordOf(operation.which, operation.known), recordOf(operation.which, operation.next)));
    case Kind::RemoveRecord:
        return answerOf(records_.remove(operation.which + 1));
    }
    return Answer::Untrue;
}

Answer Subject::readDocument(std::uint64_t known)
{
    const auto setting = document_.read();
    if (!setting) {
        if (document_.readability() != std::errc::no_such_file_or_directory)
            return Answer::Failed;
        return known == noContent ? Answer::Done : Answer::Untrue;
    }
    if (known == invalidContent)
        return setting->isValid ? Answer::Untrue : Answer::Done;
    return known >= firstContent && *setting == settingOf(known) ? Answer::Done : Answer::Untrue;
}

Answer Subject::changeEntry(const Operation& operation)
{
    const auto setting =
        PamSetting{std::string(names::pamServices.at(operation.which)), ModuleInterface::Auth,
                   operation.kind == Kind::SaveRequired ? ControlFlag::Required : ControlFlag::Optional,
                   std::string(names::pamModule)}
            .archived();
    return answerOf(operation.kind == Kind::RemoveEntry ? pam_.remove(setting.value()) : pam_.save(setting.value()));
}

Answer Subject::readRecord(const Operation& operation)
{
    const auto record = records_.read(operation.which + 1);
    if (record)
        return operation.known != noContent && *record == recordOf(operation.which, operation.known) ? Answer::Done
                                                                                                     : Answer::Untrue;
    if (record.failure().kind == FileFailure::Kind::SystemError)
        return Answer::Failed;
    return record.failure().kind == FileFailure::Kind::Missing && operation.known == noContent ? Answer::Done
                                                                                               : Answer::Untrue;
}

} // namespace vantro::torture
