"""How the tool guards itself: sign-in, several tokens at once, a broken settings document."""

import accessibility
import display

# What leads from one control, page or menu to another, or to a window's own menu.
WAYS_TO_THE_WINDOW = ["Tab", "shift+Tab", "ctrl+Tab", "ctrl+shift+Tab", "ctrl+Page_Down", "ctrl+Page_Up", "F6", "F10",
                      "shift+F10", "Menu", "alt+1", "alt+2", "alt+3", "alt+4", "ctrl+1", "ctrl+2", "ctrl+n", "ctrl+w"]
WAYS_TO_CLOSE = ["Escape", "Return", "KP_Enter", "space", "alt+F4", "ctrl+w", "ctrl+q", "ctrl+F4"]


def leave(tour, window):
    """Goes to another program's window; what was pressed before has been dealt with then."""
    display.bring_to_front(*display.windows(tour.lab.process))
    tour.wait_for("another window is in front", lambda: "active" not in window.states)


def several_tokens(tour):
    """A second token brings an alert that closes itself when the last one has gone."""
    tour.plug_in(1)
    tour.plug_in(2)
    alert = tour.wait_for("an alert appears", tour.dialog)
    tour.see(tour.says(alert, "MultipleConnectionsAlertView", "heading"), "it says that several tokens are plugged in")
    tour.screenshot("several-tokens")
    page = tour.main_window().name
    window = tour.front_window()
    display.press(window, *WAYS_TO_CLOSE, *WAYS_TO_THE_WINDOW)
    display.ask_to_close(window)
    leave(tour, alert)
    tour.see("showing" in alert.states, "no key closes it, and no window manager")
    tour.see(tour.main_window().name == page, "no key gets past it")
    tour.pull_out(1)
    tour.see(tour.dialog() is not None, "with one token left it stays")
    tour.pull_out(2)
    tour.wait_for("it closes with the last token", lambda: tour.dialog() is None)


def start_twice(tour):
    """Started a second time the tool brings its window to the front, and changes nothing."""
    document = tour.document_path().read_bytes()
    leave(tour, tour.main_window())
    tour.see(tour.start_another_tool() == 0, "the second start ends at once")
    tour.wait_for("the first one's window is in front", lambda: "active" in tour.main_window().states)
    tour.see(tour.document_path().read_bytes() == document, "the settings document is as it was")


def see_sign_in_alone(tour, dialog):
    """Nothing of the main window is there, neither for the eye nor for the window manager nor for a screen reader."""
    process = tour.tool.process
    accessibility.wait_for("the display shows the dialog", lambda: display.windows(process))
    tour.see(len(display.windows(process)) == 1, "the display shows no other window of the tool")
    tour.see(len(display.windows(process, "^Vantro Standalone", is_hidden_too=True)) == 1, "and hides none")
    tour.see([window.role for window in tour.tool.children] == ["dialog"], "a screen reader finds the dialog alone")
    others = [element for element in dialog.walk(is_hidden_too=True)
              if element.role not in ("filler", "panel", "label")]
    found = sorted(f"{element.role} {element.name}" for element in others)
    expected = sorted(f"push button {tour.button(dialog, name).name}" for name in ("sign_in", "quit"))
    tour.see(found == expected, f"and in it nothing but texts and: {', '.join(found)}")


def sign_in(tour):
    """With the sign-in switch on the tool asks for an administrator key before it shows anything."""
    tour.choose_tab("admin_keys")
    tour.check_box("AdminView", "tool_login_auth").press()
    tour.wait_for("the document says so", lambda: tour.setting("AdminSetting/ToolLoginAuth") == "true")
    tour.restart_tool()
    document = tour.document_path().read_bytes()
    dialog = tour.wait_for("the tool asks for a sign-in", tour.dialog)
    see_sign_in_alone(tour, dialog)
    tour.screenshot("sign-in")
    display.press(*display.windows(tour.tool.process), *WAYS_TO_THE_WINDOW)
    leave(tour, dialog)
    print("Whatever keys were pressed:", flush=True)
    see_sign_in_alone(tour, dialog)
    tour.see(tour.start_another_tool() == 0, "a second start ends at once")
    tour.wait_for("it brings the dialog to the front", lambda: "active" in dialog.states)
    see_sign_in_alone(tour, dialog)
    tour.see(tour.document_path().read_bytes() == document, "the settings document is as it was")
    for token, refusal in ((None, "not_connected_yubikey"), (2, "not_admin_key")):
        if token:
            tour.plug_in(token)
            tour.wait_for_serial_in_log(token)
        tour.button(dialog, "sign_in").press()
        text = tour.text("LoginAuthAlertMessage", refusal)
        tour.wait_for(f"it refuses: {text}", lambda text=text: dialog.says(text))
    tour.screenshot("sign-in-refused")
    tour.pull_out(2)
    tour.plug_in(1)
    tour.wait_for_serial_in_log(1)
    tour.button(dialog, "sign_in").press()
    tour.wait_for("with an administrator key the main window appears",
                  lambda: any(window.find("page tab", tour.tab("user_keys")) for window in tour.tool.windows))
    tour.wait_for("the sign-in has gone", lambda: tour.dialog() is None)
    tour.pull_out(1)


def refuse_unreadable(tour):
    """Over a settings document that can't be read the tool opens no window, and ends."""
    tour.stop_tool()
    document = tour.document_path()
    before = document.read_bytes()
    document.unlink()
    document.mkdir()
    tour.start_tool()
    alert = tour.wait_for("an alert appears", tour.alert)
    tour.see(tour.says(alert, "StartMessage", "document_unreadable_heading"), "it says that the document can't be read")
    tour.see(len(tour.tool.windows) == 1, "nothing else of the tool is to be seen")
    tour.screenshot("unreadable-document")
    tour.button(alert, "close").press()
    tour.wait_for_end_of_tool()
    document.with_name(document.name + ".unreadable").rmdir()
    document.write_bytes(before)
    tour.start_tool()


def recover(tour):
    """A broken settings document is kept aside and replaced, and the tool says so."""
    tour.stop_tool()
    broken = "<VantroStandaloneSetting version=\"1\"><Users>"
    tour.document_path().write_text(broken, encoding="utf-8")
    tour.start_tool()
    alert = tour.wait_for("an alert appears", tour.alert)
    tour.see(tour.says(alert, "CommonMessage", "unexpected_change_setting"), "it says that the settings were reset")
    tour.screenshot("recovery")
    tour.button(alert, "ok").press()
    tour.wait_for("the main window appears",
                  lambda: any(window.find("page tab", tour.tab("user_keys")) for window in tour.tool.windows))
    kept = tour.document_path().with_name(tour.document_path().name + ".invalid")
    tour.see(kept.read_text(encoding="utf-8") == broken, "the broken document is kept beside the new one")
    tour.see(tour.document_users() == [], "the new document has no keys")


ALL = [several_tokens, start_twice, sign_in, refuse_unreadable, recover]
