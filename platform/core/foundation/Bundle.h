#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace vantro {

/// The installed program as a whole: its prefix (the folder above bin/ and libexec/) and the information dictionary,
/// share/vantro-standalone/Info.plist below it. The settings tool and the privileged service read the same file.
/// Immutable after construction; any thread.
class Bundle
{
  public:
    /// Reads the dictionary below `prefix`. A missing or unreadable file gives an empty dictionary.
    explicit Bundle(std::filesystem::path prefix);

    /// The bundle of the running program, found from its executable's own path. Made on first use.
    static const Bundle& main();

    /// Makes main() the bundle of another prefix, for a program that lies outside one (a test). Must come before the
    /// first main(); later it has no effect and answers false.
    static bool setMainPrefix(const std::filesystem::path& prefix);

    /// The text of a string entry; empty when the key is missing.
    [[nodiscard]] std::string string(std::string_view key) const;

    [[nodiscard]] const std::filesystem::path& prefix() const { return prefix_; }

    /// prefix/share/vantro-standalone, where the dictionary lies.
    [[nodiscard]] std::filesystem::path resourceFolder() const;

  private:
    std::filesystem::path prefix_;
    std::map<std::string, std::string, std::less<>> entries_;
};

/// The keys of the information dictionary: the program's version, and the absolute paths of five folders.
namespace bundle_key {
inline constexpr std::string_view shortVersion = "CFBundleShortVersionString";
inline constexpr std::string_view settingsFolder = "VantroSettingsFolder";
inline constexpr std::string_view challengeResponseFolder = "VantroChallengeResponseFolder";
inline constexpr std::string_view signedInFolder = "VantroSignedInFolder";
inline constexpr std::string_view pamServicesFolder = "VantroPAMServicesFolder";
inline constexpr std::string_view pamModulesFolder = "VantroPAMModulesFolder";
} // namespace bundle_key

} // namespace vantro
