"""The program that is dictated into, and the content of its field, read over the accessibility bus."""

import ast
import re

from .desktop import await_that, output

_TEXT_ROLE, _MENU_BAR_ROLE = 61, 34
_ROOT = ("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")


class _Bus:
    """The accessibility bus. An element is a pair of bus name and path."""

    def __init__(self) -> None:
        found = output("gdbus", "call", "--session", "-d", "org.a11y.Bus", "-o", "/org/a11y/bus", "-m",
                       "org.a11y.Bus.GetAddress")  # fmt: skip
        self._address = ast.literal_eval(found)[0] if found else ""

    def _call(self, element: tuple[str, str], method: str, *arguments: str) -> str:
        return output("gdbus", "call", "--address", self._address, "-d", element[0], "-o", element[1], "-m",
                      f"org.a11y.atspi.{method}", *arguments)  # fmt: skip

    def _look(self, element: tuple[str, str], method: str):
        # Values are preceded by their types: "(uint32 61,)", "(@a(so) [],)".
        plain = re.sub(r"(?:uint32|objectpath|@[a-z()]+) ", "", self._call(element, method))
        return ast.literal_eval(plain)[0] if plain else None

    def text(self, element: tuple[str, str]) -> str:
        answer = self._call(element, "Text.GetText", "0", "--", "-1")
        return ast.literal_eval(answer)[0] if answer else ""

    def find_text(self, element: tuple[str, str] = _ROOT) -> tuple[str, str] | None:
        """The first multi-line text field, depth first."""
        for child in self._look(element, "Accessible.GetChildren") or []:
            role = self._look(child, "Accessible.GetRole")
            if role == _TEXT_ROLE:
                return child
            if role != _MENU_BAR_ROLE and (found := self.find_text(child)):
                return found
        return None


class Editor:
    """The started editor. The constructor waits until it accepts input."""

    COMMAND = ("mousepad", "--disable-server")

    def __init__(self) -> None:
        window = await_that("Das Fenster des Editors erscheint", lambda: output(
            "xdotool", "search", "--onlyvisible", "--class", "mousepad").split())[-1]  # fmt: skip
        output("xdotool", "windowactivate", "--sync", window)
        self._bus = _Bus()
        self._field = await_that("Das Textfeld des Editors ist zu sehen", self._bus.find_text)

    def text(self) -> str:
        return self._bus.text(self._field)
