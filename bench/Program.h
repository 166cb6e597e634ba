#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include "foundation/FileDescriptor.h"

namespace vantro::bench {

/// Another program, which runs from the construction to the destruction of this. One thread.
class Program
{
  public:
    /// Starts it, with the library `preload` where one is named. Throws std::system_error.
    explicit Program(const std::string& path, const std::vector<std::string>& arguments = {},
                     const std::string& preload = {});
    /// Ends its standard input, by which it is to end itself, and waits for that. Kills it where it doesn't.
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// What it writes, as output or as errors, up to the next `marker`. Throws std::runtime_error with all of it when
    /// the marker does not come.
    std::string readUntil(std::string_view marker);

    void writeLine() const;

    /// Its memory, in MiB: what it alone has, and its share of what others have as well.
    [[nodiscard]] double memory() const;

    void kill() const;

  private:
    FileDescriptor input_;
    FileDescriptor output_;
    std::string unread_;
    pid_t process_ = -1;
};

} // namespace vantro::bench
