#pragma once

#include <QUrl>

namespace vantro {

/// The desktop as the tool uses it. Main thread.
class NSWorkspace
{
  public:
    static NSWorkspace& shared();

    /// Hands the URL to the program that the desktop has registered for its scheme. False, without any window, when no
    /// program is registered or it could not be started.
    bool open(const QUrl& url);
};

} // namespace vantro
