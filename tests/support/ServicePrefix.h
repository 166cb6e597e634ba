#pragma once

#include <filesystem>

#include "support/Prefix.h"

namespace vantro::tests {

/// A prefix with the privileged service in it.
class ServicePrefix : public Prefix
{
  public:
    ServicePrefix();

    [[nodiscard]] std::filesystem::path program() const { return path() / "libexec" / "vantro-standalone-service"; }

    /// Fulfils all that a mandatory entry asks for: a module that libpam could load, and a master key with a record.
    void makeDemandable() const;
};

} // namespace vantro::tests
