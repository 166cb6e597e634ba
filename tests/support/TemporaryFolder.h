#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vantro::tests {

/// A fresh folder below the system's temporary folder, removed with everything in it at the end.
class TemporaryFolder
{
  public:
    /// Throws std::system_error when the folder can't be made.
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }

  private:
    std::filesystem::path path_;
};

/// Writes a file in place, in the plainest way; throws std::runtime_error on failure.
void writeFile(const std::filesystem::path& path, std::string_view content);

/// The same, with these permission bits.
void writeFile(const std::filesystem::path& path, std::string_view content, unsigned int mode);

/// The permission bits of a file.
[[nodiscard]] unsigned int modeOf(const std::filesystem::path& path);

/// The whole content of a file; empty when it can't be read.
[[nodiscard]] std::string contentOf(const std::filesystem::path& path);

} // namespace vantro::tests
