#pragma once

class QPushButton;

namespace vantro {

/// Has Enter press the default button of the window while `button` has the focus, whatever the desktop's habit: some
/// have it press the button that has the focus, which may be the one that destroys. Space goes on pressing the button
/// itself. Main thread.
void leaveEnterToDefaultButton(QPushButton* button);

} // namespace vantro
