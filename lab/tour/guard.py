"""How the tool guards itself: sign-in, several tokens at once, a broken settings document."""

from management import SIGN_IN_SWITCH

SEVERAL = "Several tokens are plugged in"


def several_tokens(tour):
    """A second token brings an alert that closes itself when the last one has gone."""
    tour.plug_in(1)
    tour.plug_in(2)
    alert = tour.wait_for("an alert appears", tour.dialog)
    tour.see(alert.says(SEVERAL), "it says that several tokens are plugged in")
    tour.screenshot("several-tokens")
    tour.pull_out(1)
    tour.see(tour.dialog() is not None, "with one token left it stays")
    tour.pull_out(2)
    tour.wait_for("it closes with the last token", lambda: tour.dialog() is None)


def sign_in(tour):
    """With the sign-in switch on the tool asks for an administrator key before it shows anything."""
    tour.choose_tab("Admin Keys")
    tour.main_window().wait("check box", SIGN_IN_SWITCH).press()
    tour.wait_for("the document says so", lambda: tour.setting("AdminSetting/ToolLoginAuth") == "true")
    tour.restart_tool()
    dialog = tour.wait_for("the tool asks for a sign-in", tour.dialog)
    tour.see(len(tour.tool.windows) == 1, "nothing else of it is to be seen")
    tour.screenshot("sign-in")
    for token, refusal in ((None, "No token is connected"), (2, "not an administrator key")):
        if token:
            tour.plug_in(token)
            tour.wait_for_serial_in_log(token)
        dialog.wait("push button", "Sign In").press()
        tour.wait_for(f"it refuses: {refusal}", lambda refusal=refusal: dialog.says(refusal))
    tour.screenshot("sign-in-refused")
    tour.pull_out(2)
    tour.plug_in(1)
    tour.wait_for_serial_in_log(1)
    dialog.wait("push button", "Sign In").press()
    tour.wait_for("with an administrator key the main window appears",
                  lambda: any(window.find("page tab", "User Keys") for window in tour.tool.windows))
    tour.wait_for("the sign-in has gone", lambda: tour.dialog() is None)
    tour.pull_out(1)


def recover(tour):
    """A broken settings document is kept aside and replaced, and the tool says so."""
    tour.stop_tool()
    broken = "<VantroStandaloneSetting version=\"1\"><Users>"
    tour.document_path().write_text(broken, encoding="utf-8")
    tour.start_tool()
    alert = tour.wait_for("an alert appears", tour.alert)
    tour.see(alert.says("They were reset"), "it says that the settings were reset")
    tour.screenshot("recovery")
    alert.find("push button", "OK").press()
    tour.wait_for("the main window appears",
                  lambda: any(window.find("page tab", "User Keys") for window in tour.tool.windows))
    kept = tour.document_path().with_name(tour.document_path().name + ".invalid")
    tour.see(kept.read_text(encoding="utf-8") == broken, "the broken document is kept beside the new one")
    tour.see(tour.document_users() == [], "the new document has no keys")


ALL = [several_tokens, sign_in, recover]
