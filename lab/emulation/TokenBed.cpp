#include "emulation/TokenBed.h"

#include <memory>
#include <stdexcept>

#include <umockdev.h>

#include "emulation/Preload.h"

namespace vantro::lab {

namespace {

struct Free
{
    void operator()(char* text) const { g_free(text); }
};
using OwnedText = std::unique_ptr<char, Free>;

/// The fields as umockdev wants them: name, value, name, value, null. Points into `fields`.
std::vector<char*> flattened(const TokenBed::Fields& fields)
{
    std::vector<char*> flat;
    for (const auto& [name, value] : fields) {
        flat.push_back(const_cast<char*>(name.c_str()));
        flat.push_back(const_cast<char*>(value.c_str()));
    }
    flat.push_back(nullptr);
    return flat;
}

} // namespace

void TokenBed::Unref::operator()(UMockdevTestbed* testbed) const
{
    g_object_unref(testbed);
}

TokenBed::TokenBed()
{
    if (!isUnderPreload()) {
        throw std::logic_error("a token bed needs the emulation's libraries: call reexecuteUnderPreload() first");
    }
    testbed_.reset(umockdev_testbed_new());
}

TokenBed::~TokenBed() = default;

std::filesystem::path TokenBed::rootFolder() const
{
    const OwnedText path(umockdev_testbed_get_root_dir(handle()));
    return path.get();
}

std::string TokenBed::addDevice(const std::string& subsystem, const std::string& name, const std::string& parent,
                                const Fields& attributes, const Fields& properties)
{
    const std::lock_guard lock(mutex_);
    const OwnedText path(umockdev_testbed_add_devicev(handle(), subsystem.c_str(), name.c_str(),
                                                      parent.empty() ? nullptr : parent.c_str(),
                                                      flattened(attributes).data(), flattened(properties).data()));
    if (!path) {
        throw std::runtime_error("the emulated device " + name + " could not be added");
    }
    return path.get();
}

void TokenBed::removeDevice(const std::string& sysPath)
{
    const std::lock_guard lock(mutex_);
    umockdev_testbed_uevent(handle(), sysPath.c_str(), "remove");
    umockdev_testbed_remove_device(handle(), sysPath.c_str());
}

unsigned int TokenBed::takeHidrawNumber()
{
    const std::lock_guard lock(mutex_);
    unsigned int number = 0;
    while (!hidrawNumbers_.insert(number).second) {
        ++number;
    }
    return number;
}

void TokenBed::giveBackHidrawNumber(unsigned int number)
{
    const std::lock_guard lock(mutex_);
    hidrawNumbers_.erase(number);
}

unsigned int TokenBed::nextNumber()
{
    const std::lock_guard lock(mutex_);
    return ++lastNumber_;
}

} // namespace vantro::lab
