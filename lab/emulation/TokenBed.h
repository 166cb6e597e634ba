#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

// NOLINTNEXTLINE(bugprone-reserved-identifier): the name is its library's.
struct _UMockdevTestbed;

namespace vantro::lab {

/// The emulated device tree into which virtual tokens are plugged. A process has at most one, and has called
/// reexecuteUnderPreload() before. Children that are started while it exists see its devices instead of the machine's.
/// Destroying it removes its folder; every token must be gone, and every child that uses it should be.
class TokenBed
{
  public:
    using Fields = std::vector<std::pair<std::string, std::string>>;

    /// Throws std::logic_error when the process is not under the emulation's libraries.
    TokenBed();
    ~TokenBed();
    TokenBed(const TokenBed&) = delete;
    TokenBed& operator=(const TokenBed&) = delete;

    /// The folder with the emulated dev/ and sys/.
    [[nodiscard]] std::filesystem::path rootFolder() const;

    /// Adds a device below `parent` (empty: none) and sends its add event. Answers its path in sysfs. Any thread.
    std::string addDevice(const std::string& subsystem, const std::string& name, const std::string& parent,
                          const Fields& attributes, const Fields& properties);

    /// Sends the device's remove event and takes it away. Any thread.
    void removeDevice(const std::string& sysPath);

    /// The lowest number of a hidraw node that is free, as the kernel gives them out; taken until it is given back.
    [[nodiscard]] unsigned int takeHidrawNumber();
    void giveBackHidrawNumber(unsigned int number);

    /// A number that no call has answered before: for USB devices, HID devices and ports.
    [[nodiscard]] unsigned int nextNumber();

    /// For calls that this class does not wrap; owned by the bed.
    [[nodiscard]] _UMockdevTestbed* handle() const { return testbed_.get(); }

  private:
    struct Unref
    {
        void operator()(_UMockdevTestbed* testbed) const;
    };

    std::unique_ptr<_UMockdevTestbed, Unref> testbed_;
    std::mutex mutex_;
    std::set<unsigned int> hidrawNumbers_;
    unsigned int lastNumber_ = 0;
};

} // namespace vantro::lab
