#pragma once

#include <QString>

#include "appkit/NSAlert.h"

namespace vantro {

/// A new alert with one button, OK, and the title with the version. The caller shows it. Main thread.
[[nodiscard]] NSAlert createOKButtonOnlyAlert(NSAlert::Style style, const QString& message,
                                              const QString& informativeText);

} // namespace vantro
