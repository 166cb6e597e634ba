#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "ServiceFailure.h"
#include "VantroStandaloneSetting/PamSetting.h"

namespace vantro {

/// How long a request to the privileged service may take before its caller takes silence for failure. Set by tests
/// alone, before any request.
extern std::chrono::milliseconds serviceReplyLimit;

/// Has the privileged service write the add-on's entry into the PAM service `fileName`. Blocks the calling thread; true
/// only when the service replies true within serviceReplyLimit, and else `failure` says why, as far as that is known by
/// then. Main thread.
[[nodiscard]] bool updatePamSetting(const std::string& fileName, ControlFlag controlFlag,
                                    ServiceFailure* failure = nullptr);

/// Has the privileged service write the challenge-response setting file of the plugged-in token with the serial. Blocks
/// the calling thread; true only when the service replies true within serviceReplyLimit, and else `failure` says
/// why, as far as that is known by then. Main thread.
[[nodiscard]] bool createCRSettingFile(std::uint64_t serial, ServiceFailure* failure = nullptr);

/// The answers to a full update of the add-on's entries, one for each PAM service.
struct PamUpdateResults
{
    bool authorization = false;
    bool screensaver = false;
    bool screensaverNew = false;
    /// Why the first update that failed did.
    ServiceFailure failure;

    /// By the rule of the running operating system: from version 14 on all three count, before that the last does not.
    [[nodiscard]] bool isSuccess() const;

    /// The record that callers write about an update.
    [[nodiscard]] std::string logText() const;
};

/// Updates all names::pamServices with one control flag, one after the other and all three whatever the answers. What
/// was written stays when another fails. Main thread.
PamUpdateResults updateAllPamSettings(ControlFlag controlFlag);

} // namespace vantro
