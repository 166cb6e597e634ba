#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "VantroStandaloneNames.h"

namespace vantro {

/// The privileged service's name on the system bus, and its interface's.
inline constexpr const char* label = names::service;

/// The interface that tells why a request failed.
inline constexpr const char* diagnosisInterface = "com.vantro.Standalone1.Diagnosis";

/// The one object that the service exports.
inline constexpr const char* serviceObjectPath = names::serviceObject;

/// The D-Bus names of the service's methods and their signatures.
namespace service_method {
inline constexpr const char* getSerial = "GetSerial";                     // → t
inline constexpr const char* createCRSettingFile = "CreateCRSettingFile"; // t → b
inline constexpr const char* removeCRSettingFile = "RemoveCRSettingFile"; // t → b
inline constexpr const char* validate = "Validate";                       // t → b
inline constexpr const char* savePamSetting = "SavePamSetting";           // ay → b
inline constexpr const char* removePamSetting = "RemovePamSetting";       // ay → b
/// In the interface of the diagnosis: why the caller's last request was answered false or 0 (FailureReason.h).
inline constexpr const char* lastFailure = "LastFailure"; // → s
} // namespace service_method

/// What the tool can ask of the privileged service. Every call returns at once; its reply block runs once, on a thread
/// of the connection and never on the caller's. When a request fails (no service, a refusal, a time-out) its reply
/// block is destroyed without having run. Serials are token serial numbers; a Boolean is true on success.
class VantroStandaloneServiceProtocol
{
  public:
    using SerialReply = std::function<void(std::uint64_t serial)>;
    using SuccessReply = std::function<void(bool isSuccess)>;

    virtual ~VantroStandaloneServiceProtocol() = default;

    /// The serial of the token that was plugged in last; 0 when none can be read.
    virtual void getSerialWithReply(SerialReply reply) = 0;
    /// Writes the challenge-response record of the plugged-in token that has the serial.
    virtual void createCRSettingFileWithSerialNo(std::uint64_t serial, SuccessReply reply) = 0;
    virtual void removeCRSettingFileWithSerialNo(std::uint64_t serial, SuccessReply reply) = 0;
    /// Has the plugged-in token that has the serial answer the challenge of its record.
    virtual void validateWithSerialNo(std::uint64_t serial, SuccessReply reply) = 0;
    /// Writes or removes one PAM entry; `setting` is an archived PamSetting.
    virtual void savePamSettingWithSetting(std::vector<std::uint8_t> setting, SuccessReply reply) = 0;
    virtual void removePamSettingWithSetting(std::vector<std::uint8_t> setting, SuccessReply reply) = 0;
};

} // namespace vantro
