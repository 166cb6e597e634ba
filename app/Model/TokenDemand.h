#pragma once

#include <filesystem>
#include <utility>

#include <QString>

namespace vantro {

/// What the forced logon switch comes to on this machine: it demands a token only where the login add-on is complete
/// and the PAM services of programs include the add-on's. Reads their files, which everybody may. Any thread.
class TokenDemand
{
  public:
    /// The folders in which the PAM services and libpam's modules lie.
    struct Folders
    {
        std::filesystem::path services;
        std::filesystem::path modules;
    };

    /// Those of the main bundle.
    [[nodiscard]] static Folders installedFolders();

    explicit TokenDemand(Folders folders) : folders_(std::move(folders)) {}

    /// What stands between the switch and its effect and what to do, or that a token is demanded; empty when the switch
    /// is off and nothing stands in its way. By the files as they are.
    [[nodiscard]] QString text(bool isSwitchedOn) const;

  private:
    /// What of the add-on is not installed; empty when it is complete.
    [[nodiscard]] QString missingPart() const;
    /// Whether the PAM service of a program includes "authorization", directly or through others.
    [[nodiscard]] bool isAskedFor() const;
    /// Whether nobody passes "authorization" without a token.
    [[nodiscard]] bool isDemanded() const;

    Folders folders_;
};

} // namespace vantro
