#pragma once

#include <optional>
#include <string>

#include "foundation/KeyedArchive.h"

namespace vantro {

/// The management groups of PAM; the first column of a PAM service's line. Positions count from 0.
enum class ModuleInterface
{
    Account,
    Auth,
    Password,
    Session
};

/// The control flags of PAM; the second column. Position 0 makes the module mandatory, position 3 does not.
enum class ControlFlag
{
    Required,
    Requisite,
    Sufficient,
    Optional
};

/// One entry of the login add-on in one PAM service. Archived with secure coding for the way to the privileged service.
struct PamSetting
{
    /// The PAM service: a file name without folder.
    std::string fileName;
    ModuleInterface moduleInterface = ModuleInterface::Auth;
    ControlFlag controlFlag = ControlFlag::Optional;
    /// The module's file name.
    std::string moduleName;

    bool operator==(const PamSetting&) const = default;

    /// Nothing when a text is no valid UTF-8 or too long.
    [[nodiscard]] std::optional<ArchiveData> archived() const;

    /// Nothing for anything but a PamSetting's archive: another class, a field missing or too many, a wrong type, a
    /// position out of range, a text that is empty, longer than 255 bytes, or no valid UTF-8.
    [[nodiscard]] static std::optional<PamSetting> unarchived(const ArchiveData& data);
};

/// The word that stands for the position in a PAM file ("auth", "required").
[[nodiscard]] std::string pamKeyword(ModuleInterface moduleInterface);
[[nodiscard]] std::string pamKeyword(ControlFlag controlFlag);

} // namespace vantro
