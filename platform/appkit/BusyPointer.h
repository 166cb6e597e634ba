#pragma once

namespace vantro {

/// Shows for its lifetime that the main thread is busy: what was changed just before is painted at once, and the
/// pointer becomes the waiting one. Main thread; does nothing in a program without windows.
class BusyPointer
{
  public:
    BusyPointer();
    ~BusyPointer();
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
};

} // namespace vantro
