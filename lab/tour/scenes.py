"""What the tour shows, scene by scene. A scene gets the Tour; scenes run in order and build on one another."""

from accessibility import wait_for

FIRST = "5550101"
SECOND = "12345678"
EMPTY_TOKEN = 3
TOUCH_TOKEN = 4
TOUCHED = "999"
SERIALS = {1: FIRST, 2: SECOND, TOUCH_TOKEN: TOUCHED}

PAGES = ("settings", "user_keys", "master_keys", "admin_keys")


def start(tour):
    """The window opens on an empty list."""
    window = tour.main_window()
    tour.see(window.name.startswith("Vantro Standalone (Version "), f"the window's title is \"{window.name}\"")
    tabs = [tab.name for tab in window.find_all("page tab")]
    tour.see(tabs == [tour.tab(page) for page in PAGES], f"the tabs are {', '.join(tabs)}")
    tour.see(tour.user_keys() == [], "the list of user keys is empty")
    tour.screenshot("empty-list")


def register_first(tour):
    """A token that is plugged in while the dialog is open is seen at once, and registered for alice."""
    dialog = tour.open_registration()
    tour.see(tour.says(dialog, "UserViewMessage", "yubiKey_is_not_connected"),
             "the dialog says that no token is connected")
    tour.see(not tour.button(dialog, "register").is_enabled, "Register is disabled")
    tour.screenshot("no-token")
    tour.plug_in(1)
    tour.wait_for(f"without a click the dialog shows the serial {FIRST}", lambda: tour.serial_text(dialog) == FIRST)
    tour.wait_for("Register is enabled", lambda: tour.button(dialog, "register").is_enabled)
    dialog.find("combo box").choose("alice")
    tour.see(tour.serial_text(dialog) == FIRST, "alice is chosen")
    tour.screenshot("register-alice")
    tour.button(dialog, "register").press()
    tour.wait_for("the dialog closes", lambda: tour.dialog() is None)
    tour.wait_for(f"the list has the row alice, {FIRST}", lambda: tour.user_keys() == [("alice", FIRST)])
    tour.screenshot("alice-registered")


def register_second(tour):
    """A token is pulled out and another plugged in while the dialog is open; that one is registered for bob."""
    dialog = tour.open_registration()
    tour.pull_out(1)
    tour.wait_for("the dialog says that no token is connected",
                  lambda: tour.says(dialog, "UserViewMessage", "yubiKey_is_not_connected"))
    tour.plug_in(2)
    tour.wait_for(f"the dialog shows the serial {SECOND}", lambda: tour.serial_text(dialog) == SECOND)
    dialog.find("combo box").choose("bob")
    tour.button(dialog, "register").press()
    tour.wait_for("the dialog closes", lambda: tour.dialog() is None)
    tour.wait_for("the list has two rows",
                  lambda: tour.user_keys() == [("alice", FIRST), ("bob", SECOND)])
    tour.screenshot("bob-registered")


def refuse_second_time(tour):
    """What is assigned already can't be registered again."""
    dialog = tour.open_registration()
    dialog.find("combo box").choose("bob")
    already = tour.text("UserViewMessage", "already_allocated_key")
    tour.wait_for("the dialog says that bob has the token already",
                  lambda: tour.serial_text(dialog).split("\n") == [SECOND, already])
    tour.see(not tour.button(dialog, "register").is_enabled, "Register is disabled")
    tour.screenshot("already-assigned")
    tour.button(dialog, "cancel").press()
    tour.wait_for("Cancel closes the dialog", lambda: tour.dialog() is None)
    tour.pull_out(2)


def fail(tour):
    """A token without a secret can't be registered: an alert says so, and the dialog stays usable."""
    tour.plug_in(EMPTY_TOKEN)
    dialog = tour.open_registration()
    dialog.find("combo box").choose("alice")
    register = tour.button(dialog, "register")
    wait_for("Register is enabled", lambda: register.is_enabled)
    register.press()
    alert = tour.wait_for("an alert appears", lambda: tour.alert())
    tour.see(tour.says(alert, "CommonMessage", "cr_failure_alert"),
             "the alert says that the challenge-response slot is not set up")
    tour.screenshot("failure")
    tour.button(alert, "ok").press()
    tour.wait_for("OK closes the alert", lambda: tour.alert() is None)
    tour.see(tour.dialog() is not None, "the dialog is still open")
    tour.see(register.is_enabled, "Register is still enabled")
    tour.button(dialog, "cancel").press()
    tour.wait_for("Cancel closes the dialog", lambda: tour.dialog() is None)
    tour.pull_out(EMPTY_TOKEN)


def check_files(tour):
    """The files say what the windows said."""
    tour.see(tour.document_users() == [("alice", [FIRST]), ("bob", [SECOND])],
             "the document has exactly these two assignments")
    records = tour.records()
    tour.see(len(records) == 2 and all(any(serial in name for name in records) for serial in (FIRST, SECOND)),
             f"there are records of these two tokens only: {', '.join(records)}")


def register_with_touch(tour):
    """A token that wants a touch is registered once it has been touched; serials are in the order of numbers."""
    tour.plug_in(TOUCH_TOKEN)
    dialog = tour.open_registration()
    dialog.find("combo box").choose("alice")
    tour.press_when_enabled(dialog, "register")
    tour.wait_for("the token blinks", lambda: tour.is_blinking(TOUCH_TOKEN))
    tour.screenshot("waiting-for-touch")
    tour.touch(TOUCH_TOKEN)
    tour.wait_for("the dialog closes", lambda: tour.dialog() is None)
    tour.wait_for("the list has three rows",
                  lambda: tour.user_keys() == [("alice", TOUCHED), ("alice", FIRST), ("bob", SECOND)])
    tour.wait_for("the token blinks no more", lambda: not tour.is_blinking(TOUCH_TOKEN))
    tour.pull_out(TOUCH_TOKEN)


ALL = [start, register_first, register_second, refuse_second_time, fail, check_files, register_with_touch]
