#pragma once

#include <filesystem>
#include <optional>

#include "RequestFailure.h"

namespace vantro::service {

/// Says why libpam could not load the file as a module that authenticates; nothing when it could: a regular file, or a
/// link to one, that is a shared object for this machine and exports what libpam calls. It is read, never run, so that
/// what the module itself needs (other libraries, its own files) is not known.
[[nodiscard]] std::optional<RequestFailure> pamModuleFailure(const std::filesystem::path& path);

} // namespace vantro::service
