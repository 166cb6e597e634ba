#pragma once

#include <QUrl>

namespace vantro {

/// The desktop as the tool uses it. Main thread.
class NSWorkspace
{
  public:
    static NSWorkspace& shared();

    /// Hands a file or a page of the web to the program that the desktop has for it. False, without any window, for any
    /// other URL (nothing here knows the links of another system), and where no program could be started.
    bool open(const QUrl& url);
};

} // namespace vantro
