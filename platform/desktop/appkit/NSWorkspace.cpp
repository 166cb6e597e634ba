#include "appkit/NSWorkspace.h"

#include <QDesktopServices>
#include <QFile>
#include <QStandardPaths>
#include <QStringList>

namespace vantro {
namespace {

/// Whether any of the desktop's association files names a program for the scheme. The desktop's own opener is not asked
/// first: for a scheme that nobody handles it puts up an error window or starts a browser.
bool hasHandler(const QString& scheme)
{
    const QByteArray entry = "x-scheme-handler/" + scheme.toUtf8() + '=';
    QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
    folders += QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation);
    for (const QString& folder : std::as_const(folders)) {
        for (const char* const name : {"/mimeapps.list", "/mimeinfo.cache"}) {
            QFile file(folder + QLatin1String(name));
            if (!file.open(QIODevice::ReadOnly))
                continue;
            while (!file.atEnd()) {
                const QByteArray line = file.readLine();
                if (line.startsWith(entry) && !line.mid(entry.size()).trimmed().isEmpty())
                    return true;
            }
        }
    }
    return false;
}

} // namespace

NSWorkspace& NSWorkspace::shared()
{
    static NSWorkspace workspace;
    return workspace;
}

bool NSWorkspace::open(const QUrl& url)
{
    return hasHandler(url.scheme()) && QDesktopServices::openUrl(url);
}

} // namespace vantro
