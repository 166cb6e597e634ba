#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "VantroStandaloneSetting/VantroStandaloneSetting.h"
#include "foundation/Outcome.h"
#include "foundation/TrustedFile.h"
#include "tokens/RecordStore.h"

namespace vantro::service {

/// What the settings document says about tokens, read anew for every question: the tool may have changed it. The
/// document belongs to administrators, not to the service, so that its content is believed no further than an
/// administrator is. Any thread.
class RegisteredKeys
{
  public:
    /// `document` is the settings document's file; the records must outlive this.
    RegisteredKeys(std::filesystem::path document, const RecordStore& records)
        : document_(std::move(document)), records_(records)
    {
    }

    /// Whether any of the document's lists names the token. Fails for a document that can't be read; a missing one
    /// names nobody.
    [[nodiscard]] Outcome<bool, FileFailure> isNamed(std::uint64_t serial) const;

    /// The serials of the tokens that open the account, its own and the master keys, in ascending order; nothing where
    /// no token is demanded: forced logon is off, or no account has a key and there is no master key, so that a demand
    /// would lock everybody out. Fails like isNamed().
    [[nodiscard]] Outcome<std::optional<std::vector<std::uint64_t>>, FileFailure>
    openersOf(const std::string& account) const;

    /// Whether pulling out the token that opened an account locks its screen. Fails like isNamed().
    [[nodiscard]] Outcome<bool, FileFailure> locksScreens() const;

    /// Whether some user or master key has a record, so that there is a token that opens an account. Fails like
    /// isNamed().
    [[nodiscard]] Outcome<bool, FileFailure> opensAnAccount() const;

  private:
    [[nodiscard]] Outcome<VantroStandaloneSetting, FileFailure> read() const;

    const std::filesystem::path document_;
    const RecordStore& records_;
};

} // namespace vantro::service
