"""Reads and works windows as a screen reader does, through AT-SPI. To be imported when the environment names a session
bus whose accessibility bus is running."""

import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

import waiting  # noqa: E402

# The binding calls an action's name by one that it also deprecates; the other would be the element's name.
warnings.filterwarnings("ignore", category=DeprecationWarning, module=__name__)

# A program that waits for the service answers nothing meanwhile; the tool's longest wait is 20 seconds.
CALL_LIMIT_MS = 25000

Atspi.init()
Atspi.set_timeout(CALL_LIMIT_MS, CALL_LIMIT_MS)


def wait_for(what, condition, limit=15):
    """Waits until the condition answers something that counts as true, and answers that."""
    def answer():
        try:
            return condition()
        except GLib.Error:  # the element has gone while it was read
            return None
    return waiting.wait_for(what, answer, limit)


class Element:
    """One element of a window, or a whole program; what it says is read afresh every time."""

    def __init__(self, accessible):
        self._accessible = accessible

    def _fresh(self):
        self._accessible.clear_cache()
        return self._accessible

    @property
    def role(self):
        return self._fresh().get_role_name()

    @property
    def name(self):
        return self._fresh().get_name()

    @property
    def description(self):
        return self._fresh().get_description()

    @property
    def states(self):
        return {state.value_nick for state in self._fresh().get_state_set().get_states()}

    @property
    def is_enabled(self):
        return "enabled" in self.states and "sensitive" in self.states

    @property
    def children(self):
        accessible = self._fresh()
        found = (accessible.get_child_at_index(index) for index in range(accessible.get_child_count()))
        return [Element(child) for child in found if child is not None]

    def walk(self, is_hidden_too=False):
        """Everything below that is to be seen, or everything below."""
        for child in self.children:
            if is_hidden_too or "showing" in child.states:
                yield child
                yield from child.walk(is_hidden_too)

    def find_all(self, role, name=None, description=None):
        return [element for element in self.walk()
                if element.role == role and name in (None, element.name)
                and description in (None, element.description)]

    def find(self, role, name=None, description=None):
        """The one such element; None when there is none."""
        found = self.find_all(role, name, description)
        return found[0] if found else None

    def wait(self, role, name=None, description=None, limit=15):
        return wait_for(f"there is a {role} {name or description or ''}".rstrip(),
                        lambda: self.find(role, name, description), limit)

    def texts(self):
        return [element.name for element in self.walk() if element.role == "label" and element.name]

    def says(self, text):
        return any(text in label for label in self.texts())

    def press(self):
        """Presses a button, toggles a check box, chooses a tab."""
        wait_for(f"the {self.role} {self.name} can be pressed", lambda: self._action("Press", "Toggle") is not None)
        self._accessible.do_action(self._action("Press", "Toggle"))

    def _action(self, *names):
        accessible = self._fresh()
        if "Action" not in accessible.get_interfaces():
            return None
        for index in range(accessible.get_n_actions()):
            if Atspi.Action.get_action_name(accessible, index) in names:
                return index
        return None

    def choose(self, text):
        """Chooses an item of a combo box by its first letters, as a person at the keyboard does."""
        focus = self._action("SetFocus")
        if focus is not None:
            self._accessible.do_action(focus)
        wait_for("the combo box has the focus", lambda: "focused" in self.states)
        Atspi.generate_keyboard_event(0, text, Atspi.KeySynthType.STRING)
        # A combo box's name is the item that is chosen.
        wait_for(f"{text} is chosen", lambda: self.name == text)

    def rows(self):
        """The texts of a table, row by row."""
        table = self._fresh()
        count = Atspi.Table.get_n_rows(table)
        columns = Atspi.Table.get_n_columns(table)
        return [tuple(Atspi.Table.get_accessible_at(table, row, column).get_name() for column in range(columns))
                for row in range(count)]

    def select_rows(self, rows):
        """Selects exactly these rows of a table."""
        table = self._fresh()
        for row in range(Atspi.Table.get_n_rows(table)):
            if row in rows:
                Atspi.Table.add_row_selection(table, row)
            else:
                Atspi.Table.remove_row_selection(table, row)
        wait_for(f"the rows {rows} are selected", lambda: Atspi.Table.get_selected_rows(self._fresh()) == rows)

    @property
    def process(self):
        return self._fresh().get_process_id()

    @property
    def windows(self):
        return self.children


def programs(name):
    """The running programs of that name."""
    desktop = Atspi.get_desktop(0)
    desktop.clear_cache()
    children = (desktop.get_child_at_index(index) for index in range(desktop.get_child_count()))
    return [Element(child) for child in children if child is not None and child.get_name() == name]


def program(name, limit=30):
    """A running program by its own name, once it has a window."""
    def find():
        return next((candidate for candidate in programs(name) if candidate.windows), None)
    return wait_for(f"{name} shows a window", find, limit)


def alert_of(name):
    """An alert of any program of that name; None when there is none."""
    return next((window for candidate in programs(name) for window in candidate.windows if window.role == "alert"), None)
