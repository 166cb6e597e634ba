#pragma once

namespace vantro {

/// Shows for its lifetime that the main thread is busy: what was changed just before is painted at once, and the
/// pointer becomes the waiting one. What a person typed or clicked meanwhile is dropped at the end: it was meant for
/// what was shown then, and the focus may be elsewhere. Main thread; does nothing in a program without windows.
class BusyPointer
{
  public:
    BusyPointer();
    ~BusyPointer();
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
};

} // namespace vantro
