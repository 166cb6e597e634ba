#include "appkit/NSWorkspace.h"

#include <QDesktopServices>

namespace vantro {

NSWorkspace& NSWorkspace::shared()
{
    static NSWorkspace workspace;
    return workspace;
}

bool NSWorkspace::open(const QUrl& url)
{
    // The desktop's opener starts a browser, or puts up an error, for a scheme that it does not know.
    const bool isKnown = url.isLocalFile() || url.scheme() == QLatin1String("https");
    return isKnown && QDesktopServices::openUrl(url);
}

} // namespace vantro
