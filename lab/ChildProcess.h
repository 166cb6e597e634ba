#pragma once

#include <QProcess>

namespace vantro::lab {

/// Makes the process end (SIGTERM) as soon as the lab dies in whatever way. Before start(), on the main thread.
void endWithParent(QProcess& process);

/// Asks the process to end and makes it end if it doesn't within a few seconds.
void end(QProcess& process);

/// Makes processes whose parents have ended this one's children, so that endDescendants() finds them.
void adoptDescendants();

/// Ends every child that this process has left and waits for them. No QProcess may be running any more.
void endDescendants();

} // namespace vantro::lab
