"""What the settings bring about: somebody of the lab signs in, with libpam, the login module and the service."""

from accessibility import wait_for
from scenes import FIRST


def before_demand(tour):
    """Registered tokens alone demand nothing."""
    tour.try_sign_in("alice")
    tour.wait_for("alice gets in without a token",
                  lambda: tour.sign_in_says("alice: signed in. No token was demanded."))


def denied(tour):
    """While a token is demanded, alice is asked for hers; bob's does not help her."""
    tour.choose_tab("settings")
    tour.check_box("SettingView", "screen_lock").press()
    tour.wait_for("the screen lock is switched on", lambda: tour.setting("SwitchSetting/ScreenLock") == "true")
    tour.try_sign_in("alice")
    tour.wait_for("she is told to plug in her token", lambda: tour.sign_in_says(tour.module_text("Plug in your token.")))
    tour.screenshot_of_lab("asked-for-token")
    tour.plug_in(2)
    reason = tour.module_text("No registered token was plugged in.")
    tour.wait_for("in the end she is denied", lambda: tour.sign_in_says(f"alice: denied. {reason}"), 45)
    tour.screenshot_of_lab("denied")
    tour.pull_out(2)


def accepted(tour):
    """She plugs hers in when she is asked for it, and is signed in."""
    tour.try_sign_in("alice")
    wait_for("she is told to plug in her token", lambda: tour.sign_in_says(tour.module_text("Plug in your token.")))
    tour.plug_in(1)
    tour.wait_for(f"alice is signed in with token {FIRST}",
                  lambda: tour.sign_in_says(f"alice: signed in with token {FIRST}."))
    tour.see(tour.screens_say("Alice's screen is open."), "her screen is open")
    tour.screenshot_of_lab("signed-in")


def locked(tour):
    """Her token is pulled out: her screen is locked, bob's is not, and she gets in again with it."""
    tour.pull_out(1)
    tour.wait_for("alice's screen is locked", lambda: tour.screens_say("Alice's screen is locked. Bob's screen is open."))
    tour.screenshot_of_lab("screen-locked")
    tour.plug_in(1)
    tour.try_sign_in("alice")
    tour.wait_for("she signs in again", lambda: tour.sign_in_says(f"alice: signed in with token {FIRST}."))
    tour.wait_for("and her screen is open", lambda: tour.screens_say("Alice's screen is open. Bob's screen is open."))
    tour.pull_out(1)


def back_to_normal(tour):
    """Switched off, nobody is asked for a token."""
    for account in ("alice", "bob"):
        tour.try_sign_in(account)
        tour.wait_for(f"{account} gets in without a token",
                      lambda: tour.sign_in_says(f"{account}: signed in. No token was demanded."))


DEMANDED = [denied, accepted, locked]
