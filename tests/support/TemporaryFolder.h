#pragma once

#include <filesystem>
#include <string>

namespace vantro::tests {

/// A folder of its own, mode 0700, that goes with everything in it.
class TemporaryFolder
{
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

/// Writes a file as it is, with the mode; throws when that fails.
void writeFile(const std::filesystem::path& path, const std::string& content, unsigned int mode = 0644);

/// The bytes of a file; throws when it can't be read.
[[nodiscard]] std::string contentOf(const std::filesystem::path& path);

/// The permission bits of a file.
[[nodiscard]] unsigned int modeOf(const std::filesystem::path& path);

} // namespace vantro::tests
