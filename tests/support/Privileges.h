#pragma once

#include <cstddef>
#include <filesystem>

#include <unistd.h>

namespace vantro::tests {

/// While it lives, a process that runs as root acts on files as "nobody"; any other process stays what it is.
class WithoutPrivileges
{
  public:
    WithoutPrivileges();
    ~WithoutPrivileges();
    WithoutPrivileges(const WithoutPrivileges&) = delete;
    WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;

  private:
    uid_t user_ = ::geteuid();
};

/// A file system of a few pages, mounted on an existing folder for this process alone. Needs root.
class SmallFileSystem
{
  public:
    static constexpr std::size_t size = 65536;

    explicit SmallFileSystem(const std::filesystem::path& folder);
    ~SmallFileSystem();
    SmallFileSystem(const SmallFileSystem&) = delete;
    SmallFileSystem& operator=(const SmallFileSystem&) = delete;

    /// False where this process may not mount; a test then skips.
    [[nodiscard]] bool isMounted() const { return isMounted_; }

  private:
    std::filesystem::path folder_;
    bool isMounted_ = false;
};

} // namespace vantro::tests
