#include "emulation/HidNode.h"

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <map>
#include <mutex>
#include <stdexcept>
#include <utility>

#include <linux/hidraw.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <umockdev.h>

#include "foundation/FileDescriptor.h"

namespace vantro::lab {

namespace {

constexpr unsigned int hidClass = 3;
constexpr unsigned int hidrawMajor = 244;

template <class... Arguments>
std::string formatted(const char* format, Arguments... arguments)
{
    char buffer[128];
    std::snprintf(buffer, sizeof buffer, format, arguments...);
    return buffer;
}

struct Unref
{
    void operator()(gpointer object) const { g_object_unref(object); }
};

} // namespace

/// What programs ask of the open node. Lives as long as the last request that is under way.
class HidNode::Requests
{
  public:
    Requests(TokenBed& bed, std::string deviceNode, std::chrono::milliseconds transferTime, FeatureHandler handler);
    ~Requests();
    Requests(const Requests&) = delete;
    Requests& operator=(const Requests&) = delete;

    /// From here on everything fails with ENODEV.
    void end()
    {
        const std::lock_guard lock(state_->mutex);
        state_->isGone = true;
    }

  private:
    struct State
    {
        /// Held while the handler runs, so that none runs once the node is gone.
        std::mutex mutex;
        bool isGone = false;
        std::chrono::milliseconds transferTime{0};
        FeatureHandler handler;
    };

    /// A request whose transfer takes its time.
    struct Transfer
    {
        std::shared_ptr<State> state;
        std::unique_ptr<UMockdevIoctlClient, Unref> client;
    };

    /// The nodes that are there. The emulation's thread gets a number and finds the state here: the hand-over between
    /// the threads is our own mutex's, for umockdev's isn't seen by ThreadSanitizer, and a late request finds nothing.
    struct Registry
    {
        std::mutex mutex;
        std::map<std::uintptr_t, std::shared_ptr<State>> states;
        std::uintptr_t lastNumber = 0;
    };

    static Registry& registry();
    static std::uintptr_t enter(const std::shared_ptr<State>& state);
    static std::shared_ptr<State> find(std::uintptr_t number);

    static gboolean onRequest(UMockdevIoctlBase* base, UMockdevIoctlClient* client, gpointer number);
    static gboolean onTransferred(gpointer transfer);
    static void complete(State& state, UMockdevIoctlClient* client);
    void awaitWhoHasOpened() const;

    TokenBed& bed_;
    std::string deviceNode_;
    std::shared_ptr<State> state_ = std::make_shared<State>();
    std::uintptr_t number_ = 0;
    std::unique_ptr<UMockdevIoctlBase, Unref> base_{umockdev_ioctl_base_new()};
};

HidNode::Requests::Requests(TokenBed& bed, std::string deviceNode, std::chrono::milliseconds transferTime,
                            FeatureHandler handler)
    : bed_(bed), deviceNode_(std::move(deviceNode))
{
    state_->transferTime = transferTime;
    state_->handler = std::move(handler);
    number_ = enter(state_);
    g_signal_connect(base_.get(), "handle-ioctl", G_CALLBACK(&Requests::onRequest),
                     reinterpret_cast<gpointer>(number_)); // NOLINT(performance-no-int-to-ptr): never followed
    GError* error = nullptr;
    if (!umockdev_testbed_attach_ioctl(bed_.handle(), deviceNode_.c_str(), base_.get(), &error)) {
        const std::string message = error->message;
        g_error_free(error);
        throw std::runtime_error(deviceNode_ + ": " + message);
    }
}

HidNode::Requests::~Requests()
{
    end();
    awaitWhoHasOpened();
    umockdev_testbed_detach_ioctl(bed_.handle(), deviceNode_.c_str(), nullptr);
    const std::lock_guard lock(registry().mutex);
    registry().states.erase(number_);
}

/// Waits until the emulation's thread has taken up whoever has opened the node so far: umockdev ends a program whose
/// connection goes before that.
void HidNode::Requests::awaitWhoHasOpened() const
{
    const auto path = bed_.rootFolder() / "ioctl" / deviceNode_.substr(1);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    path.native().copy(address.sun_path, sizeof address.sun_path - 1);
    constexpr timeval patience = {5, 0};
    const FileDescriptor connection(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ::setsockopt(connection.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    if (::connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return;
    ::shutdown(connection.get(), SHUT_WR);
    // Connections are taken up in their order, and one that asks for nothing is closed then.
    char nothing = 0;
    [[maybe_unused]] const auto end = ::recv(connection.get(), &nothing, sizeof nothing, 0);
}

HidNode::Requests::Registry& HidNode::Requests::registry()
{
    static Registry registry;
    return registry;
}

std::uintptr_t HidNode::Requests::enter(const std::shared_ptr<State>& state)
{
    const std::lock_guard lock(registry().mutex);
    registry().states[++registry().lastNumber] = state;
    return registry().lastNumber;
}

std::shared_ptr<HidNode::Requests::State> HidNode::Requests::find(std::uintptr_t number)
{
    const std::lock_guard lock(registry().mutex);
    const auto found = registry().states.find(number);
    return found != registry().states.end() ? found->second : nullptr;
}

gboolean HidNode::Requests::onRequest(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer data)
{
    const std::shared_ptr<State> state = find(reinterpret_cast<std::uintptr_t>(data));
    if (!state) {
        umockdev_ioctl_client_complete(client, -1, ENODEV);
        return TRUE;
    }
    if (state->transferTime.count() == 0) {
        complete(*state, client);
        return TRUE;
    }
    auto transfer = std::make_unique<Transfer>();
    transfer->state = state;
    transfer->client.reset(static_cast<UMockdevIoctlClient*>(g_object_ref(client)));
    GSource* const timer = g_timeout_source_new(static_cast<guint>(state->transferTime.count()));
    g_source_set_callback(timer, &Requests::onTransferred, transfer.release(),
                          [](gpointer finished) { delete static_cast<Transfer*>(finished); });
    g_source_attach(timer, g_main_context_get_thread_default());
    g_source_unref(timer);
    return TRUE;
}

gboolean HidNode::Requests::onTransferred(gpointer data)
{
    const auto* const transfer = static_cast<Transfer*>(data);
    if (umockdev_ioctl_client_get_connected(transfer->client.get())) {
        complete(*transfer->state, transfer->client.get());
    }
    return G_SOURCE_REMOVE;
}

void HidNode::Requests::complete(State& state, UMockdevIoctlClient* client)
{
    const std::lock_guard lock(state.mutex);
    if (state.isGone) {
        umockdev_ioctl_client_complete(client, -1, ENODEV);
        return;
    }
    const gulong request = umockdev_ioctl_client_get_request(client);
    const bool isWrite = _IOC_TYPE(request) == 'H' && _IOC_NR(request) == _IOC_NR(HIDIOCSFEATURE(0));
    const bool isRead = _IOC_TYPE(request) == 'H' && _IOC_NR(request) == _IOC_NR(HIDIOCGFEATURE(0));
    const auto size = static_cast<std::size_t>(_IOC_SIZE(request));
    if ((!isWrite && !isRead) || size < 1) {
        umockdev_ioctl_client_complete(client, -1, EINVAL);
        return;
    }
    const std::unique_ptr<UMockdevIoctlData, Unref> buffer(
        umockdev_ioctl_data_resolve(umockdev_ioctl_client_get_arg(client), 0, size, nullptr));
    if (!buffer) {
        umockdev_ioctl_client_complete(client, -1, EFAULT);
        return;
    }
    // The first byte is the report id; the devices of this lab have one report only.
    const bool isKnown = buffer->data[0] == 0 && state.handler(isWrite, {buffer->data + 1, size - 1});
    umockdev_ioctl_client_complete(client, isKnown ? static_cast<glong>(size) : -1, isKnown ? 0 : EPIPE);
}

HidNode::HidNode(TokenBed& bed, const Description& description, FeatureHandler handler)
    : bed_(bed), number_(bed.takeHidrawNumber()), deviceNode_(formatted("/dev/hidraw%u", number_))
{
    const unsigned int vendor = description.vendorId;
    const unsigned int product = description.productId;
    interfacePath_ = bed_.addDevice(
        "usb", formatted("%s:1.%u", description.usbName.c_str(), description.interfaceNumber), description.usbPath,
        {{"bInterfaceClass", formatted("%02x", hidClass)},
         {"bInterfaceSubClass", formatted("%02x", description.subClass)},
         {"bInterfaceProtocol", formatted("%02x", description.protocol)},
         {"bInterfaceNumber", formatted("%02x", description.interfaceNumber)}},
        {{"DEVTYPE", "usb_interface"},
         {"DRIVER", "usbhid"},
         {"PRODUCT", formatted("%x/%x/543", vendor, product)},
         {"INTERFACE", formatted("%u/%u/%u", hidClass, description.subClass, description.protocol)}});
    hidPath_ =
        bed_.addDevice("hid", formatted("0003:%04X:%04X.%04X", vendor, product, bed_.nextNumber()), interfacePath_, {},
                       {{"DRIVER", "hid-generic"},
                        {"HID_ID", formatted("0003:%08X:%08X", vendor, product)},
                        {"HID_NAME", description.productName},
                        {"HID_PHYS", formatted("usb-0000:00:14.0-%s/input%u", description.usbName.c_str(),
                                               description.interfaceNumber)},
                        {"HID_UNIQ", ""}});
    std::vector<std::uint8_t> descriptor = description.reportDescriptor;
    umockdev_testbed_set_attribute_binary(bed_.handle(), hidPath_.c_str(), "report_descriptor", descriptor.data(),
                                          static_cast<gint>(descriptor.size()));
    std::filesystem::create_directories(bed_.rootFolder() / "dev");
    std::ofstream(bed_.rootFolder() / deviceNode_.substr(1)).close();
    requests_ = std::make_unique<Requests>(bed_, deviceNode_, description.transferTime, std::move(handler));
    // Its add event is the first that a program takes notice of, so everything else is there by now.
    hidrawPath_ = bed_.addDevice(
        "hidraw", formatted("hidraw/hidraw%u", number_), hidPath_, {{"dev", formatted("%u:%u", hidrawMajor, number_)}},
        {{"DEVNAME", deviceNode_}, {"MAJOR", formatted("%u", hidrawMajor)}, {"MINOR", formatted("%u", number_)}});
}

HidNode::~HidNode()
{
    requests_->end();
    std::error_code ignored;
    std::filesystem::remove(bed_.rootFolder() / deviceNode_.substr(1), ignored);
    requests_.reset();
    bed_.removeDevice(hidrawPath_);
    bed_.removeDevice(hidPath_);
    bed_.removeDevice(interfacePath_);
    bed_.giveBackHidrawNumber(number_);
}

} // namespace vantro::lab
