#pragma once

#include <string_view>

/// Why a request was answered false or 0: the stable words that the service's `LastFailure` answers and the tool knows
/// sentences for. A word is never given another meaning; who reads one that is not known here treats it as none.
namespace vantro::failure_reason {

/// There was no failure, or nothing is known of it.
inline constexpr std::string_view none = "";

// Tokens.
inline constexpr std::string_view noToken = "no-token";
inline constexpr std::string_view noTokenWithSerial = "no-token-with-serial";
inline constexpr std::string_view noKeyboardInterface = "no-keyboard-interface";
inline constexpr std::string_view tokenBusy = "token-busy";
inline constexpr std::string_view tokenGone = "token-gone";
inline constexpr std::string_view deviceNotAllowed = "device-not-allowed";
inline constexpr std::string_view transferFailed = "transfer-failed";
inline constexpr std::string_view noAnswer = "no-answer";
inline constexpr std::string_view badAnswer = "bad-answer";
inline constexpr std::string_view slotNotProgrammed = "slot-not-programmed";
inline constexpr std::string_view notTouched = "not-touched";
/// The device claims the serial of a registered token and can't answer as that token does.
inline constexpr std::string_view claimsAnother = "claims-another";

// Records.
inline constexpr std::string_view noRecord = "no-record";
/// Damaged, of another owner, with a loose mode, or no regular file.
inline constexpr std::string_view recordUnusable = "record-unusable";
/// The token's response is not the one of the record: its slot was programmed anew.
inline constexpr std::string_view wrongResponse = "wrong-response";
/// The records' folder is missing, not the service's own, or open to others.
inline constexpr std::string_view recordsFolder = "records-folder";

// PAM entries.
inline constexpr std::string_view serviceFileMissing = "service-file-missing";
/// Of another owner, writable by others, no regular file, too large, or nothing that libpam would read.
inline constexpr std::string_view serviceFileUnusable = "service-file-unusable";
inline constexpr std::string_view moduleMissing = "module-missing";
/// There is a file of the module's name, and libpam could not load it.
inline constexpr std::string_view moduleUnusable = "module-unusable";
/// A jump of the file, or of one that includes it, leads over the entry.
inline constexpr std::string_view jump = "jump";
/// A file that takes part in signing in can't be read as libpam reads it, so that nobody knows what jumps it has.
inline constexpr std::string_view includerUnreadable = "includer-unreadable";
inline constexpr std::string_view noKeyRegistered = "no-key-registered";
inline constexpr std::string_view documentUnreadable = "document-unreadable";

// Everything else.
/// The request asks for something that the tool never asks for.
inline constexpr std::string_view notAccepted = "not-accepted";
inline constexpr std::string_view diskFull = "disk-full";
inline constexpr std::string_view writeFailed = "write-failed";
inline constexpr std::string_view noTime = "no-time";
/// Something that nobody can help from outside; the service's log has it.
inline constexpr std::string_view internal = "internal";

} // namespace vantro::failure_reason
