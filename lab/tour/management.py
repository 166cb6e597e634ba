"""What an administrator changes after the first registrations: master and administrator keys, forced logon, deletions."""

from accessibility import wait_for
from scenes import FIRST, SECOND, TOUCHED


def register_master(tour):
    """A master key is registered."""
    tour.choose_tab("master_keys")
    tour.see(tour.rows("MasterKeyView") == [], "the list of master keys is empty")
    tour.see(tour.says(tour.main_window(), "MasterKeyView", "empty_list"), "the list says so and how to add one")
    tour.plug_in(1)
    dialog = tour.open_dialog("MasterKeyView", "register")
    tour.wait_for(f"the dialog shows the serial {FIRST}", lambda: tour.serial_text(dialog) == FIRST)
    tour.screenshot("register-master")
    tour.press_and_close(dialog, "register")
    tour.wait_for(f"the list has the row {FIRST}", lambda: tour.rows("MasterKeyView") == [(FIRST,)])


def register_administrator(tour):
    """An administrator key is registered; until then the switch of the tool's sign-in explains why it is off."""
    tour.choose_tab("admin_keys")
    switch = tour.check_box("AdminView", "tool_login_auth")
    tour.see(not switch.is_enabled, "the sign-in switch can't be used")
    tour.see(tour.says(tour.main_window(), "AdminView", "tool_login_auth_hint"), "a text says why")
    tour.screenshot("no-administrator-key")
    dialog = tour.open_dialog("AdminView", "register")
    tour.press_and_close(dialog, "register")
    tour.wait_for(f"the list has the row {FIRST}", lambda: tour.rows("AdminView") == [(FIRST,)])
    tour.wait_for("the sign-in switch can be used", lambda: switch.is_enabled)
    tour.screenshot("administrator-key")
    tour.pull_out(1)


def forced_logon(tour):
    """Forced logon is switched on and off; the PAM entries follow."""
    tour.print_pam("The PAM services before")
    tour.choose_tab("settings")
    switch = tour.check_box("SettingView", "forced_yubikey_logon")
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
    switch = tour.check_box("SettingView", "forced_yubikey_logon")
    with tour.missing_module():
        switch.press()
        tour.wait_for("a text says that the change was not made",
                      lambda: tour.says(tour.main_window(), "SettingView", "update_failed"))
        tour.see(tour.says(tour.main_window(), "SettingView", "reinstall"), "and how the module comes back")
        tour.see("checked" not in switch.states, "the switch has sprung back")
        tour.see(tour.pam_flags() == ["optional"] * 3, "the PAM services are as they were")
        tour.see(tour.setting("SwitchSetting/SecureMode") == "false", "and so is the document")
        tour.screenshot("forced-logon-refused")
    switch.press()
    tour.wait_for("with the module it works again", lambda: tour.pam_flags() == ["required"] * 3)


def delete_one(tour):
    """Nothing is deleted without a selection or by Enter; one selected key goes."""
    tour.choose_tab("user_keys")
    dialog = tour.open_dialog("UserView", "delete")
    tour.see(tour.says(dialog, "UserViewMessage", "not_selected_for_deletion"),
             "without a selection the dialog says so")
    tour.see(not tour.button(dialog, "delete").is_enabled, "Delete is disabled")
    tour.screenshot("nothing-selected")
    tour.press_and_close(dialog, "cancel")
    tour.select_rows("UserView", [0])
    dialog = tour.open_dialog("UserView", "delete")
    tour.see(dialog.says(f"alice : {TOUCHED}"), "the dialog names the key")
    tour.see("is-default" in tour.button(dialog, "cancel").states, "Enter would press Cancel")
    tour.see(tour.says(dialog, "DeletionUserKeyView", "confirmation", 1), "and speaks of one")
    tour.screenshot("delete-one")
    tour.press_and_close(dialog, "delete")
    tour.wait_for("the other rows are left", lambda: tour.rows("UserView") == [("alice", FIRST), ("bob", SECOND)])
    tour.see(tour.pam_flags() == ["required"] * 3, "the PAM services are as they were")


def delete_master(tour):
    """The master key goes without a warning while user keys are left."""
    tour.choose_tab("master_keys")
    tour.select_rows("MasterKeyView", [0])
    dialog = tour.open_dialog("MasterKeyView", "delete")
    tour.press_and_close(dialog, "delete")
    tour.wait_for("the list is empty", lambda: tour.rows("MasterKeyView") == [])


def delete_last(tour):
    """Before the last keys go the tool warns; Cancel keeps them, OK deletes them and switches forced logon off."""
    tour.choose_tab("user_keys")
    for answer in ("refuse", "ok"):
        tour.select_rows("UserView", [0, 1])
        dialog = tour.open_dialog("UserView", "delete")
        tour.see(tour.says(dialog, "DeletionUserKeyView", "confirmation", 2), "the dialog speaks of two keys")
        tour.button(dialog, "delete").press()
        alert = tour.wait_for("a warning appears", tour.alert)
        tour.see(tour.says(alert, "CommonMessage", "no_registration_yubiKey"),
                 "it says that these are the last ones")
        tour.screenshot(f"last-key-{answer}")
        tour.button(alert, answer).press()
        tour.wait_for(f"{answer} closes warning and dialog", lambda: not tour.alert() and not tour.dialog())
        left = [("alice", FIRST), ("bob", SECOND)] if answer == "refuse" else []
        tour.wait_for(f"{len(left)} rows are left", lambda: tour.rows("UserView") == left)
    tour.wait_for("no PAM service demands the token", lambda: tour.pam_flags() == ["optional"] * 3)
    tour.wait_for("forced logon is off in the document", lambda: tour.setting("SwitchSetting/SecureMode") == "false")
    tour.see(sorted(tour.records()) == sorted([FIRST, SECOND, TOUCHED]), "the tokens' records are kept")
    tour.print_pam("The PAM services after")


def without_keys(tour):
    """Without a key forced logon can't be switched on, and the page says why."""
    tour.choose_tab("settings")
    switch = tour.check_box("SettingView", "forced_yubikey_logon")
    wait_for("forced logon can't be switched on", lambda: not switch.is_enabled)
    tour.see(tour.says(tour.main_window(), "SettingView", "forced_yubikey_logon_warning"), "a text says why")
    tour.screenshot("settings-without-keys")


REGISTRATIONS = [register_master, register_administrator]
FORCED_LOGON = [forced_logon, refused_forced_logon]
DELETIONS = [delete_one, delete_master, delete_last, without_keys]
