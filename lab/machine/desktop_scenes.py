"""From the menu to a demanded token: signing in by the display manager, the screen lock, a terminal."""

from image import ADMINISTRATOR
from machine import wait_for
from service_scenes import FIRST, SECOND
from visiting import DOCUMENT, PASSWORD

PLUG_IN = "Plug in your token."
NO_TOKEN = "No registered token was plugged in."
NO_TOKEN_LOGGED = f"{ADMINISTRATOR}: no-token."
# What the greeter says after every denial.
AGAIN = "Please try again."


def sign_in_as_before(visit):
    """Installed, the package changes nothing about signing in."""
    visit.unplug_all()
    visit.give_password(ADMINISTRATOR)
    visit.wait_for_session(ADMINISTRATOR)


def is_tool_open(visit):
    # The name as the kernel cuts it; the service has the same one then.
    return visit.machine.run(f"pgrep -u {ADMINISTRATOR} -x vantro-standalo")[0] == 0


def open_tool(visit):
    visit.machine.press("alt-f2")
    visit.wait_for_shown("rofi")
    visit.machine.type("vantro")
    visit.wait_to_read("the menu has found the tool", "Vantro Standalone")
    visit.picture("menu")
    visit.machine.press("ret")
    wait_for("the tool is started", lambda: is_tool_open(visit))


def register(visit):
    """The tool, started from the desktop's menu: a token is registered by keyboard."""
    open_tool(visit)
    visit.wait_for_words("Before you begin", "at the first start the tool")
    visit.machine.press("esc")
    wait_for("the first start ends", lambda: not is_tool_open(visit))
    open_tool(visit)
    visit.wait_to_read("the tool shows what is to be known first", "Before you begin")
    visit.machine.press("esc")
    visit.wait_for_words("Tokens that open one account each", "the list of user keys")
    visit.machine.press("alt-r")
    visit.wait_for_words("Register a token for an account", "the dialog")
    visit.plug(FIRST)
    visit.wait_for_words(FIRST, "without a key pressed the dialog")
    visit.machine.press("alt-a")
    visit.machine.type(ADMINISTRATOR)
    visit.picture("registration")
    visit.machine.save("about-to-register")
    visit.machine.press("alt-r")
    visit.wait_for("the document has the token", lambda: f"<Serial>{FIRST}</Serial>" in visit.machine.must(f"cat {DOCUMENT}"))
    visit.see(visit.machine.run(f"grep -q '<Account>{ADMINISTRATOR}</Account>' {DOCUMENT}")[0] == 0, f"for {ADMINISTRATOR}")
    visit.see_same(visit.call("Validate", "t", FIRST), "b true", "and it passes its record")


def demand(visit):
    """A token is demanded: the profile by pam-auth-update, then the switch in the tool."""
    visit.machine.must("DEBIAN_FRONTEND=noninteractive pam-auth-update --enable vantro-standalone")
    visit.see_same(visit.entries(), [""] * 3, "with the profile alone no PAM service has an entry")
    visit.machine.press("ctrl-shift-tab")
    visit.wait_for_words("Demand a token at sign-in", "the page of settings")
    visit.machine.save("about-to-demand")
    visit.machine.press("alt-d")
    visit.wait_for("the three PAM services demand it", lambda: visit.entries() == ["required"] * 3)
    visit.machine.press("alt-l")
    visit.wait_for("pulling it out is to lock the screen",
                   lambda: "<ScreenLock>true</ScreenLock>" in visit.machine.must(f"cat {DOCUMENT}"))
    visit.wait_for_words("A token is demanded by every program", "the page")
    visit.picture("demanded")
    visit.unplug(FIRST)
    visit.sign_out(ADMINISTRATOR)


def see_denial(visit):
    """Somebody who has typed the password is denied; what the greeter has shown until then."""
    denials = visit.log().count(NO_TOKEN_LOGGED)
    prompts = visit.give_password(ADMINISTRATOR)
    # To plug in a token, that there was none, and for the next password.
    shown = visit.watch_screen("the greeter asks for a password once more", lambda: visit.greeter_prompts() >= prompts + 3)
    visit.see(visit.log().count(NO_TOKEN_LOGGED) == denials + 1, "the service's log says so: " + NO_TOKEN_LOGGED)
    visit.see(ADMINISTRATOR not in visit.sessions(), "nobody is signed in")
    return shown


def without_token(visit):
    """Signing in through the greeter without a token is denied."""
    shown = see_denial(visit)
    for words in (PLUG_IN, NO_TOKEN, AGAIN):
        visit.see(any(words in screen for screen in shown), f"the greeter says \"{words}\"")


def with_another_token(visit):
    """With another token it is denied as well."""
    visit.plug(SECOND)
    see_denial(visit)
    visit.unplug(SECOND)


def with_registered_token(visit):
    """With the registered token, plugged in when the greeter asks for it, one gets in."""
    visit.give_password(ADMINISTRATOR)
    visit.wait_for_words(PLUG_IN, "the greeter")
    visit.picture("greeter-plug-in")
    visit.plug(FIRST)
    visit.wait_for_session(ADMINISTRATOR)
    visit.picture("signed-in")


def locked(visit):
    """Pulling it out locks the screen, and takes it to unlock it."""
    visit.unplug(FIRST)
    visit.wait_for("the screen is locked", lambda: visit.machine.run("pgrep -x xsecurelock")[0] == 0)
    visit.machine.press("ctrl")
    visit.wait_to_read("the lock asks for the password", "assword")
    visit.picture("locked")
    visit.machine.type(PASSWORD + "\n")
    visit.wait_for_words(PLUG_IN, "after the password the lock")
    visit.picture("locked-plug-in")
    visit.plug(FIRST)
    visit.wait_for("with the token it is unlocked", lambda: visit.machine.run("pgrep -x xsecurelock")[0] != 0)


def sudo(visit):
    """sudo in a terminal asks for it too."""
    visit.unplug(FIRST)
    visit.machine.must("rm -f /run/typed /tmp/shown; mkfifo /run/typed; systemd-run --quiet --collect --unit=terminal sh -c "
                       f"'exec 3<>/run/typed; runuser -u {ADMINISTRATOR} -- script -q -f -c \"sudo -k; sudo id -u\" "
                       "/tmp/shown <&3'")

    def shown():
        return visit.machine.run("cat /tmp/shown")[1]

    visit.wait_for("sudo asks for the password", lambda: "password for" in shown())
    visit.machine.must(f"echo {PASSWORD} >/run/typed")
    visit.wait_for(f"then it says \"{PLUG_IN}\"", lambda: PLUG_IN in shown())
    visit.plug(FIRST)
    visit.wait_for("with the token it does what it was told to", lambda: shown().replace("\r", "").find("\n0\n") > 0)


UNTIL_DEMANDED = [sign_in_as_before, register, demand]
DEMANDED = [without_token, with_another_token, with_registered_token, locked, sudo]
