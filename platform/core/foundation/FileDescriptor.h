#pragma once

#include <unistd.h>
#include <utility>

namespace vantro {

/// Owns one file descriptor and closes it. A negative value means none.
class FileDescriptor
{
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
    ~FileDescriptor() { close(); }
    FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        if (this != &other) {
            close();
            descriptor_ = std::exchange(other.descriptor_, -1);
        }
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    [[nodiscard]] int get() const { return descriptor_; }
    explicit operator bool() const { return descriptor_ >= 0; }

    /// Closes now; false with errno set when the close reported a lost write.
    bool close()
    {
        const int descriptor = std::exchange(descriptor_, -1);
        return descriptor < 0 || ::close(descriptor) == 0;
    }

  private:
    int descriptor_ = -1;
};

} // namespace vantro
