"""The program as its user sees it: settings, hold key, overlay, tray icon, log."""

import json
import re
import time
from collections.abc import Iterator
from contextlib import contextmanager
from dataclasses import dataclass
from pathlib import Path

from .desktop import await_that, folder, output

#: The right Ctrl key, the hold key of a new installation, by its key code.
_HOLD_KEY = "105"
_OVERLAY = "^Querlin Overlay$"
#: In pixels; without an icon the tray is narrower.
_NARROWEST_TRAY = 16
#: Settings of a user who has closed the first steps and dictates the recordings.
_SETTINGS = {
    "hasCompletedOnboarding": True,
    "updateLawsAutomatically": False,
    "checkForUpdatesAtLaunch": False,
    "userDictionary": ["aufzunehmen", "Hanna", "Quellmann"],
}


def prepare_settings() -> None:
    (folder("XDG_CONFIG_HOME") / "local.mandolan.querlin.json").write_text(json.dumps(_SETTINGS))


def log() -> Path:
    return folder("XDG_STATE_HOME") / "Querlin.log"


def _memory_of(process: Path) -> str:
    """Shared pages count in proportion."""
    name = (process / "comm").read_text().strip()
    pages = re.search(r"^Pss: +(\d+)", (process / "smaps_rollup").read_text(), re.MULTILINE)
    return f"{name} {int(pages[1]) / 1024:.0f} MB"


@dataclass
class Querlin:
    id: int
    #: The time of the last release of the key.
    released: float = 0.0

    @staticmethod
    def says(words: str) -> str | None:
        """The last line of the log with these words."""
        lines = log().read_text(errors="replace").splitlines() if log().exists() else []
        return next((line for line in reversed(lines) if words in line), None)

    @staticmethod
    def shows_overlay() -> bool:
        return bool(output("xdotool", "search", "--onlyvisible", "--name", _OVERLAY))

    @contextmanager
    def held_key(self) -> Iterator[None]:
        output("xdotool", "keydown", _HOLD_KEY)
        try:
            await_that("Das Overlay erscheint", self.shows_overlay, 5)
            yield
        finally:
            self.released = time.monotonic()
            output("xdotool", "keyup", _HOLD_KEY)

    def await_rest(self) -> None:
        await_that("Das Overlay verschwindet", lambda: not self.shows_overlay(), 15)

    @contextmanager
    def open_menu(self) -> Iterator[None]:
        output("xdotool", "mousemove", *await_that("Das Symbol erscheint", self._symbol), "click", "1")
        time.sleep(0.8)  # The menu may fade in.
        try:
            yield
        finally:
            # A click beside the menu: with the hold key down Escape would be Ctrl+Escape.
            output("xdotool", "mousemove", "400", "600", "click", "1")

    @staticmethod
    def _symbol() -> tuple[str, str] | None:
        """The middle of the tray; ours is the only icon."""
        tray = output("xdotool", "search", "--onlyvisible", "--class", "^Wrapper-2.0$").split()
        if not tray:
            return None
        geometry = output("xdotool", "getwindowgeometry", "--shell", tray[-1])
        shape = {name: int(value) for name, value in re.findall(r"^(\w+)=(\d+)$", geometry, re.MULTILINE)}
        if shape["WIDTH"] < _NARROWEST_TRAY:
            return None
        return str(shape["X"] + shape["WIDTH"] // 2), str(shape["Y"] + shape["HEIGHT"] // 2)

    def memory(self) -> str:
        """The memory of each process."""
        children = [child for task in Path(f"/proc/{self.id}/task").iterdir()
                    for child in (task / "children").read_text().split()]  # fmt: skip
        return ", ".join(_memory_of(Path("/proc") / process) for process in [str(self.id), *children])
