"""What an administrator changes after the first registrations: master and administrator keys, forced logon, deletions."""

from accessibility import wait_for
from scenes import FIRST, SECOND, TOUCHED

FORCED_LOGON = "Demand a token at sign-in and unlock"
SIGN_IN_SWITCH = "Ask for an administrator key when this tool starts"
LAST_KEY = "These are the last tokens that open an account"


def register_master(tour):
    """A master key is registered."""
    tour.choose_tab("Master Keys")
    tour.see(tour.rows("Master keys") == [], "the list of master keys is empty")
    tour.see(tour.main_window().says("There is no master key yet"), "the list says so and how to add one")
    tour.plug_in(1)
    dialog = tour.open_dialog("Register a master key")
    tour.wait_for(f"the dialog shows the serial {FIRST}", lambda: tour.serial_text(dialog) == FIRST)
    tour.screenshot("register-master")
    tour.press_and_close(dialog, "Register")
    tour.wait_for(f"the list has the row {FIRST}", lambda: tour.rows("Master keys") == [(FIRST,)])


def register_administrator(tour):
    """An administrator key is registered; until then the switch of the tool's sign-in explains why it is off."""
    tour.choose_tab("Admin Keys")
    switch = tour.main_window().wait("check box", SIGN_IN_SWITCH)
    tour.see(not switch.is_enabled, "the sign-in switch can't be used")
    tour.see(tour.main_window().says("register an administrator key first"), "a text says why")
    tour.screenshot("no-administrator-key")
    dialog = tour.open_dialog("Register an administrator key")
    tour.press_and_close(dialog, "Register")
    tour.wait_for(f"the list has the row {FIRST}", lambda: tour.rows("Administrator keys") == [(FIRST,)])
    tour.wait_for("the sign-in switch can be used", lambda: switch.is_enabled)
    tour.screenshot("administrator-key")
    tour.pull_out(1)


def forced_logon(tour):
    """Forced logon is switched on and off; the PAM entries follow."""
    tour.print_pam("The PAM services before")
    tour.choose_tab("Settings")
    switch = tour.main_window().wait("check box", FORCED_LOGON)
    tour.see(switch.is_enabled, "forced logon can be switched on")
    switch.press()
    tour.wait_for("every PAM service demands the token", lambda: tour.pam_flags() == ["required"] * 3)
    tour.wait_for("the document says so", lambda: tour.setting("SwitchSetting/SecureMode") == "true")
    tour.screenshot("forced-logon-on")
    tour.print_pam("The PAM services with forced logon")
    switch.press()
    tour.wait_for("no PAM service demands the token", lambda: tour.pam_flags() == ["optional"] * 3)
    tour.wait_for("the document says so", lambda: tour.setting("SwitchSetting/SecureMode") == "false")


def refused_forced_logon(tour):
    """The service refuses forced logon while the PAM module is missing: the switch springs back and a text says why."""
    switch = tour.main_window().wait("check box", FORCED_LOGON)
    with tour.missing_module():
        switch.press()
        tour.wait_for("a text says that the change was not made",
                      lambda: tour.main_window().says("The change was not made"))
        tour.see("checked" not in switch.states, "the switch has sprung back")
        tour.see(tour.pam_flags() == ["optional"] * 3, "the PAM services are as they were")
        tour.see(tour.setting("SwitchSetting/SecureMode") == "false", "and so is the document")
        tour.screenshot("forced-logon-refused")
    switch.press()
    tour.wait_for("with the module it works again", lambda: tour.pam_flags() == ["required"] * 3)


def delete_one(tour):
    """Nothing is deleted without a selection or by Enter; one selected key goes."""
    tour.choose_tab("User Keys")
    dialog = tour.open_dialog("Delete user keys")
    tour.see(dialog.says("No user key is selected"), "without a selection the dialog says so")
    tour.see(not dialog.wait("push button", "Delete").is_enabled, "Delete is disabled")
    tour.screenshot("nothing-selected")
    tour.press_and_close(dialog, "Cancel")
    tour.select_rows("User keys", [0])
    dialog = tour.open_dialog("Delete user keys")
    tour.see(dialog.says(f"alice : {TOUCHED}"), "the dialog names the key")
    tour.see("is-default" in dialog.wait("push button", "Cancel").states, "Enter would press Cancel")
    tour.screenshot("delete-one")
    tour.press_and_close(dialog, "Delete")
    tour.wait_for("the other rows are left", lambda: tour.rows("User keys") == [("alice", FIRST), ("bob", SECOND)])
    tour.see(tour.pam_flags() == ["required"] * 3, "the PAM services are as they were")


def delete_master(tour):
    """The master key goes without a warning while user keys are left."""
    tour.choose_tab("Master Keys")
    tour.select_rows("Master keys", [0])
    dialog = tour.open_dialog("Delete master keys")
    tour.press_and_close(dialog, "Delete")
    tour.wait_for("the list is empty", lambda: tour.rows("Master keys") == [])


def delete_last(tour):
    """Before the last keys go the tool warns; Cancel keeps them, OK deletes them and switches forced logon off."""
    tour.choose_tab("User Keys")
    for answer in ("Cancel", "OK"):
        tour.select_rows("User keys", [0, 1])
        dialog = tour.open_dialog("Delete user keys")
        dialog.wait("push button", "Delete").press()
        alert = tour.wait_for("a warning appears", tour.alert)
        tour.see(alert.says(LAST_KEY), "it says that these are the last ones")
        tour.screenshot(f"last-key-{answer.lower()}")
        alert.find("push button", answer).press()
        tour.wait_for(f"{answer} closes warning and dialog", lambda: not tour.alert() and not tour.dialog())
        left = [("alice", FIRST), ("bob", SECOND)] if answer == "Cancel" else []
        tour.wait_for(f"{len(left)} rows are left", lambda: tour.rows("User keys") == left)
    tour.wait_for("no PAM service demands the token", lambda: tour.pam_flags() == ["optional"] * 3)
    tour.wait_for("forced logon is off in the document", lambda: tour.setting("SwitchSetting/SecureMode") == "false")
    tour.see(sorted(tour.records()) == sorted([FIRST, SECOND, TOUCHED]), "the tokens' records are kept")
    tour.print_pam("The PAM services after")


def without_keys(tour):
    """Without a key forced logon can't be switched on, and the page says why."""
    tour.choose_tab("Settings")
    switch = tour.main_window().wait("check box", FORCED_LOGON)
    wait_for("forced logon can't be switched on", lambda: not switch.is_enabled)
    tour.see(tour.main_window().says("register a user key or a master key first"), "a text says why")
    tour.screenshot("settings-without-keys")


ALL = [register_master, register_administrator, forced_logon, refused_forced_logon, delete_one, delete_master,
       delete_last, without_keys]
