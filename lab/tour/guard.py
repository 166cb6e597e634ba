"""How the tool guards itself: sign-in, several tokens at once, a broken settings document."""


def several_tokens(tour):
    """A second token brings an alert that closes itself when the last one has gone."""
    tour.plug_in(1)
    tour.plug_in(2)
    alert = tour.wait_for("an alert appears", tour.dialog)
    tour.see(tour.says(alert, "MultipleConnectionsAlertView", "heading"), "it says that several tokens are plugged in")
    tour.screenshot("several-tokens")
    tour.pull_out(1)
    tour.see(tour.dialog() is not None, "with one token left it stays")
    tour.pull_out(2)
    tour.wait_for("it closes with the last token", lambda: tour.dialog() is None)


def start_twice(tour):
    """Started a second time the tool brings its window to the front, and changes nothing."""
    document = tour.document_path().read_bytes()
    tour.bring_lab_to_front()
    tour.wait_for("another window is in front", lambda: "active" not in tour.main_window().states)
    tour.see(tour.start_another_tool() == 0, "the second start ends at once")
    tour.wait_for("the first one's window is in front", lambda: "active" in tour.main_window().states)
    tour.see(tour.document_path().read_bytes() == document, "the settings document is as it was")


def sign_in(tour):
    """With the sign-in switch on the tool asks for an administrator key before it shows anything."""
    tour.choose_tab("admin_keys")
    tour.check_box("AdminView", "tool_login_auth").press()
    tour.wait_for("the document says so", lambda: tour.setting("AdminSetting/ToolLoginAuth") == "true")
    tour.restart_tool()
    dialog = tour.wait_for("the tool asks for a sign-in", tour.dialog)
    tour.see(tour.start_another_tool() == 0, "a second start ends at once")
    tour.see(len(tour.tool.windows) == 1, "nothing else of it is to be seen")
    tour.screenshot("sign-in")
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
