#include "ApplicationVersion.h"

#include <QSysInfo>

#include "foundation/Bundle.h"

namespace vantro {

const std::string& APP_VERSION()
{
    static const std::string version = Bundle::main().string(bundle_key::shortVersion);
    return version;
}

const std::string& OS_VERSION()
{
    static const std::string version = QSysInfo::prettyProductName().toStdString();
    return version;
}

QString windowTitleWithVersion()
{
    return QStringLiteral("Vantro Standalone (Version %1)").arg(QString::fromStdString(APP_VERSION()));
}

} // namespace vantro
