#pragma once

#include <functional>
#include <string>

#include "foundation/FileDescriptor.h"

namespace vantro::lab::usbip {

/// Where commands come from: a socket in the file system that takes one line a connection and answers it. One thread.
class CommandSocket
{
  public:
    /// Takes the place of what is left of an earlier one; throws std::system_error where it can't be made.
    explicit CommandSocket(const std::string& path);

    /// To be polled for reading, and then handed to serve().
    [[nodiscard]] int descriptor() const { return listening_.get(); }

    /// Takes one connection and has its line answered. Who sends no line within a second is not answered.
    void serve(const std::function<std::string(const std::string& line)>& answer) const;

  private:
    FileDescriptor listening_;
};

/// Sends a line to such a socket and waits for what is answered; throws std::system_error where nobody listens.
[[nodiscard]] std::string ask(const std::string& path, const std::string& line);

} // namespace vantro::lab::usbip
