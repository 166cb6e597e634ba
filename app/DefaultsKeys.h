#pragma once

#include <QString>

/// The keys of the user defaults, each of a Boolean.
namespace vantro::defaults_key {

/// Whether the alert about what to do after an installation is no longer shown.
inline const QString suppression = QStringLiteral("suppression");
/// There, with whatever value, once the tool was started for the first time.
inline const QString isFirstStart = QStringLiteral("isFirstStart");

} // namespace vantro::defaults_key
