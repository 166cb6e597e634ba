#include "usb/HidInterfaces.h"

#include <algorithm>
#include <cerrno>
#include <deque>
#include <filesystem>
#include <map>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <libudev.h>

#include "foundation/LastError.h"
#include "usb/HidDescription.h"

namespace vantro {
namespace {

constexpr const char* hidrawSubsystem = "hidraw";
/// Links to the devices of the subsystem, by their names.
constexpr const char* hidrawClassFolder = "/sys/class/hidraw";

template <auto release>
struct Releaser
{
    template <class Object>
    void operator()(Object* object) const
    {
        release(object);
    }
};
using UdevPointer = std::unique_ptr<udev, Releaser<udev_unref>>;
using MonitorPointer = std::unique_ptr<udev_monitor, Releaser<udev_monitor_unref>>;
using DevicePointer = std::unique_ptr<udev_device, Releaser<udev_device_unref>>;

void sortLongestThereFirst(std::vector<HidInterface>& interfaces)
{
    const bool allTimesKnown = std::all_of(interfaces.begin(), interfaces.end(),
                                           [](const auto& interface) { return interface.initialised.count() != 0; });
    std::sort(interfaces.begin(), interfaces.end(), [allTimesKnown](const auto& left, const auto& right) {
        if (allTimesKnown && left.initialised != right.initialised)
            return left.initialised < right.initialised;
        if (left.usbDeviceNumber != right.usbDeviceNumber)
            return left.usbDeviceNumber < right.usbDeviceNumber;
        return left.sysPath < right.sysPath;
    });
}

} // namespace

class HidInterfaceWatcher::Udev
{
  public:
    Udev(Handler onCame, Handler onWent) : onCame_(std::move(onCame)), onWent_(std::move(onWent)), udev_(udev_new())
    {
        if (!udev_)
            throw std::system_error(lastError(), "udev_new");
        monitor_.reset(udev_monitor_new_from_netlink(udev_.get(), "udev"));
        if (!monitor_)
            throw std::system_error(lastError(), "udev_monitor_new_from_netlink");
        if (udev_monitor_filter_add_match_subsystem_devtype(monitor_.get(), hidrawSubsystem, nullptr) < 0 ||
            udev_monitor_enable_receiving(monitor_.get()) < 0)
            throw std::system_error(lastError(), "udev_monitor_enable_receiving");
    }

    [[nodiscard]] int fileDescriptor() const { return udev_monitor_get_fd(monitor_.get()); }

    /// Whether interfaces that are known already are looked at again: when events were lost, another one may have come
    /// under the same path.
    enum class Look
    {
        AtUnknown,
        AtAll
    };

    void queueDifferences(Look look)
    {
        auto present = findPresent(look);
        if (!present)
            return;
        dropThoseThatLeave(*present);
        for (auto known = known_.begin(); known != known_.end();) {
            const auto same = present->find(known->first);
            const bool isThere =
                same != present->end() && (!same->second || !isAnotherPlug(known->second, *same->second));
            if (isThere)
                present->erase(same);
            else
                queue_.push_back({onWent_, known->second});
            known = isThere ? std::next(known) : known_.erase(known);
        }
        std::vector<HidInterface> come;
        for (auto& [path, interface] : *present)
            if (interface)
                come.push_back(std::move(*interface));
        sortLongestThereFirst(come);
        for (auto& interface : come)
            queueCame(std::move(interface));
    }

    void queueEvents()
    {
        bool hasLostEvents = false;
        while (true) {
            errno = 0;
            const DevicePointer device(udev_monitor_receive_device(monitor_.get()));
            if (device)
                queueEvent(device.get());
            else if (errno == ENOBUFS)
                hasLostEvents = true;
            else if (errno != EINTR)
                break;
        }
        if (hasLostEvents)
            queueDifferences(Look::AtAll);
    }

    void report()
    {
        while (!queue_.empty()) {
            const Report next = std::move(queue_.front());
            queue_.pop_front();
            next.handler(next.interface);
        }
    }

  private:
    struct Report
    {
        const Handler& handler;
        HidInterface interface;
    };

    using Present = std::map<std::string, std::optional<HidInterface>, std::less<>>;

    /// The paths that are there and what is there; without a description for those that need none or have none.
    std::optional<Present> findPresent(Look look)
    {
        // libudev's own enumeration would open every device on the way; the service looks with each request.
        const std::filesystem::path folder = hidrawClassFolder;
        std::error_code error;
        Present present;
        for (std::filesystem::directory_iterator entry(folder, error);
             !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
            std::error_code ignored;
            const auto target = std::filesystem::read_symlink(entry->path(), ignored);
            // It has gone meanwhile.
            if (ignored)
                continue;
            const std::string path = (folder / target).lexically_normal();
            auto& interface = present[path];
            if (look == Look::AtUnknown && known_.contains(path))
                continue;
            const DevicePointer device(udev_device_new_from_syspath(udev_.get(), path.c_str()));
            if (device)
                interface = interfaceOf(device.get());
        }
        // Without any device that was ever there, there is no folder either.
        if (error && error != std::errc::no_such_file_or_directory)
            return std::nullopt;
        return present;
    }

    /// Takes out what has been reported gone and can still be seen: its path goes a moment after its event.
    void dropThoseThatLeave(Present& present)
    {
        std::erase_if(leaving_, [&present](const auto& leaving) {
            const auto same = present.find(leaving.first);
            if (same == present.end() || (same->second && isAnotherPlug(leaving.second, *same->second)))
                return true;
            present.erase(same);
            return false;
        });
    }

    void queueEvent(udev_device* device)
    {
        const auto action = textOrEmpty(udev_device_get_action(device));
        const auto known = known_.find(textOrEmpty(udev_device_get_syspath(device)));
        if (action == "add" && known == known_.end()) {
            if (auto interface = interfaceOf(device))
                queueDescribed(std::move(*interface));
            else if (auto gone = goneInterfaceOf(device))
                queueGone(std::move(*gone));
        } else if (action == "remove" && known != known_.end()) {
            queue_.push_back({onWent_, known->second});
            std::error_code ignored;
            if (std::filesystem::exists(known->first, ignored))
                leaving_.insert(known_.extract(known));
            else
                known_.erase(known);
        } else if (action == "remove") {
            missed_.erase(std::string(textOrEmpty(udev_device_get_syspath(device))));
        }
    }

    void queueDescribed(HidInterface interface)
    {
        const std::string usbDevice = interface.usbDevicePath;
        queueCame(std::move(interface));
        for (auto missed = missed_.begin(); missed != missed_.end();) {
            const bool isSibling = missed->second.usbDevicePath == usbDevice;
            if (isSibling)
                queueCame(missed->second);
            missed = isSibling ? missed_.erase(missed) : std::next(missed);
        }
    }

    /// A device that is pulled out while it is looked at: whoever heard of one of its interfaces hears of all.
    void queueGone(HidInterface interface)
    {
        if (const auto model = models_.find(kindOf(interface)); model != models_.end()) {
            interface.usagePage = model->second.usagePage;
            interface.usage = model->second.usage;
            interface.maximumInputReportSize = model->second.maximumInputReportSize;
            interface.name = model->second.name;
        }
        const bool hasSibling = std::any_of(known_.begin(), known_.end(), [&interface](const auto& known) {
            return known.second.usbDevicePath == interface.usbDevicePath;
        });
        if (hasSibling)
            queueCame(std::move(interface));
        else
            missed_.insert_or_assign(interface.sysPath, std::move(interface));
    }

    void queueCame(HidInterface interface)
    {
        leaving_.erase(interface.sysPath);
        if (!interface.deviceNode.empty())
            models_[kindOf(interface)] = interface;
        queue_.push_back({onCame_, interface});
        known_.insert_or_assign(interface.sysPath, std::move(interface));
    }

    const Handler onCame_;
    const Handler onWent_;
    UdevPointer udev_;
    MonitorPointer monitor_;
    std::map<std::string, HidInterface, std::less<>> known_;
    /// Were there when their remove events were read.
    std::map<std::string, HidInterface, std::less<>> leaving_;
    /// Had gone before they could be described, and nobody has heard of their devices.
    std::map<std::string, HidInterface, std::less<>> missed_;
    /// The last interface of each kind that could be described.
    std::map<HidKind, HidInterface> models_;
    std::deque<Report> queue_;
};

HidInterfaceWatcher::HidInterfaceWatcher(Handler onCame, Handler onWent)
    : udev_(std::make_unique<Udev>(std::move(onCame), std::move(onWent)))
{
}

HidInterfaceWatcher::~HidInterfaceWatcher() = default;

void HidInterfaceWatcher::enumerate()
{
    udev_->queueDifferences(Udev::Look::AtUnknown);
    udev_->report();
}

int HidInterfaceWatcher::fileDescriptor() const
{
    return udev_->fileDescriptor();
}

void HidInterfaceWatcher::processEvents()
{
    udev_->queueEvents();
    udev_->report();
}

} // namespace vantro
