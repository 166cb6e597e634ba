"""What the keyboard does where a key too many would cost something; on every desktop the same."""

import display
from scenes import FIRST, TOUCH_TOKEN


def press(tour, *keys):
    """Presses keys in the tool's window that is in front."""
    display.press(tour.front_window(), *keys)


def has_focus(tour, dialog, name):
    return lambda: "focused" in tour.button(dialog, name).states


def tab_to(tour, window, name):
    """Presses Tab until the button has the focus: the order of buttons is the desktop's."""
    for _ in range(4):
        press(tour, "Tab")
        if has_focus(tour, window, name)():
            break
    tour.wait_for(f"{tour.button(window, name).name} has the focus", has_focus(tour, window, name))


def registers_by_enter(tour):
    """Register takes the focus when it can be used, and Enter never means Cancel."""
    tour.choose_tab("master_keys")
    dialog = tour.open_dialog("MasterKeyView", "register")
    press(tour, "Return")
    tour.see(tour.dialog() is not None, "without a token Enter does nothing")
    for _ in range(2):
        tour.plug_in(1)
        tour.wait_for("Register has the focus", has_focus(tour, dialog, "register"))
        tour.pull_out(1)
        tour.wait_for("without the token it can't be used", lambda: not tour.button(dialog, "register").is_enabled)
        tour.see("focused" not in tour.button(dialog, "cancel").states, "Cancel has not taken the focus")
    tour.plug_in(1)
    tour.wait_for("Register has the focus", has_focus(tour, dialog, "register"))
    tour.screenshot("register-by-enter")
    press(tour, "Return")
    tour.wait_for("Enter registers the token", lambda: tour.rows("MasterKeyView") == [(FIRST,)])
    tour.wait_for("the dialog closes", lambda: tour.dialog() is None)
    tour.pull_out(1)


def deletes_nothing_by_enter(tour):
    """In a deletion Enter is Cancel, whichever button has the focus; afterwards the window has the keyboard again."""
    tour.select_rows("MasterKeyView", [0])
    dialog = tour.open_dialog("MasterKeyView", "delete")
    tab_to(tour, dialog, "delete")
    tour.screenshot("delete-focused")
    press(tour, "Return")
    tour.wait_for("Enter closes the dialog", lambda: tour.dialog() is None)
    tour.see(tour.rows("MasterKeyView") == [(FIRST,)], "and deletes nothing")


def asks_before_the_last_key(tour):
    """The alert before the last key goes takes Enter for Cancel, too, and Esc as well."""
    tour.choose_tab("settings")
    tour.check_box("SettingView", "forced_yubikey_logon").press()
    tour.wait_for("every PAM service demands the token", lambda: tour.pam_flags() == ["required"] * 3)
    tour.choose_tab("master_keys")
    for key in ("Return", "Escape") * 3:
        tour.select_rows("MasterKeyView", [0])
        dialog = tour.open_dialog("MasterKeyView", "delete")
        tour.button(dialog, "delete").press()
        alert = tour.wait_for("a warning appears", tour.alert)
        tab_to(tour, alert, "ok")
        press(tour, key)
        tour.wait_for(f"{key} closes alert and dialog", lambda: not tour.alert() and not tour.dialog())
        tour.see(tour.rows("MasterKeyView") == [(FIRST,)], "and deletes nothing")
        tour.wait_for("the window has the keyboard again", lambda: "active" in tour.main_window().states)


def drops_what_was_typed_meanwhile(tour):
    """Keys that are pressed while a sign-in waits for a touch do nothing, neither then nor later."""
    tour.choose_tab("admin_keys")
    tour.plug_in(TOUCH_TOKEN)
    dialog = tour.open_dialog("AdminView", "register")
    tour.wait_for("Register has the focus", has_focus(tour, dialog, "register"))
    press(tour, "Return")
    tour.wait_for("the token blinks", lambda: tour.is_blinking(TOUCH_TOKEN))
    tour.touch(TOUCH_TOKEN)
    tour.wait_for("the dialog closes", lambda: tour.dialog() is None)
    tour.check_box("AdminView", "tool_login_auth").press()
    tour.wait_for("the document says so", lambda: tour.setting("AdminSetting/ToolLoginAuth") == "true")
    tour.restart_tool()
    tour.wait_for("the tool asks for a sign-in", tour.dialog)
    tour.wait_for_serial_in_log(TOUCH_TOKEN)
    press(tour, "Return")
    tour.wait_for("the token blinks", lambda: tour.is_blinking(TOUCH_TOKEN))
    display.type_blindly("space", "Return", "Tab", "space", "Escape")
    tour.touch(TOUCH_TOKEN)
    tour.wait_for("the main window appears",
                  lambda: any(window.find("page tab", tour.tab("user_keys")) for window in tour.tool.windows))
    tour.wait_for("the sign-in has gone", lambda: tour.dialog() is None)
    tour.pull_out(TOUCH_TOKEN)


ALL = [registers_by_enter, deletes_nothing_by_enter, asks_before_the_last_key, drops_what_was_typed_meanwhile]
