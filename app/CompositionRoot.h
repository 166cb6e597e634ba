#pragma once

#include "appkit/NSApplication.h"

namespace vantro {

/// The one place that knows every screen. Screens know each other by their names in a storyboard alone.

/// Makes the storyboards known: "Main", the pages of the main window and the dialogs that they present, and "Alert",
/// the sign-in dialog and the multiple-connections alert. Main thread; once is enough.
void installStoryboards();

/// What the application is made of at its start; installs the storyboards.
MainStoryboard applicationStoryboard();

} // namespace vantro
