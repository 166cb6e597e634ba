#include "appkit/UserDefaults.h"

#include <QStandardPaths>

namespace vantro {

UserDefaults& UserDefaults::standard()
{
    static UserDefaults defaults;
    return defaults;
}

UserDefaults::UserDefaults()
    : settings_(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                    QStringLiteral("/vantro-standalone/defaults.ini"),
                QSettings::IniFormat)
{
}

std::optional<bool> UserDefaults::object(const QString& key) const
{
    if (!settings_.contains(key))
        return std::nullopt;
    return settings_.value(key).toBool();
}

bool UserDefaults::set(const QString& key, bool value)
{
    // Storing what is there already would only cost the start of the tool a write to the disk.
    if (object(key) == value)
        return true;
    settings_.setValue(key, value);
    settings_.sync();
    return settings_.status() == QSettings::NoError;
}

} // namespace vantro
