#pragma once

#include "appkit/NSApplication.h"
#include "appkit/NSStoryboard.h"

namespace vantro {

/// The pages of the main window and the dialogs that they present. Main thread.
const NSStoryboard& mainStoryboard();

/// Storyboard "Alert": the sign-in dialog and the multiple-connections alert. Main thread.
const NSStoryboard& alertStoryboard();

/// What the application is made of at its start.
MainStoryboard applicationStoryboard();

} // namespace vantro
