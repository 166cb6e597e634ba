#pragma once

#include <string>
#include <string_view>

#include "VantroStandaloneXPCSupport/FailureReason.h"

namespace vantro::service {

/// Why a request is answered false or 0.
struct RequestFailure
{
    /// For the caller: one of failure_reason.
    std::string_view reason = failure_reason::internal;
    /// For the log: what happened, and what to do where somebody can do something.
    std::string text;
};

} // namespace vantro::service
