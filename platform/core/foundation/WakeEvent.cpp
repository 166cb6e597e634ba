#include "foundation/WakeEvent.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>

#include "foundation/LastError.h"

namespace vantro {

WakeEvent::WakeEvent() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (!descriptor_)
        throw std::system_error(lastError(), "eventfd");
}

void WakeEvent::wake() const
{
    // Fails only where the counter is full, which is awake already.
    ::eventfd_write(descriptor_.get(), 1);
}

void WakeEvent::clear() const
{
    eventfd_t count = 0;
    ::eventfd_read(descriptor_.get(), &count);
}

bool WakeEvent::isAwake() const
{
    pollfd wait = {descriptor_.get(), POLLIN, 0};
    return ::poll(&wait, 1, 0) > 0;
}

} // namespace vantro
