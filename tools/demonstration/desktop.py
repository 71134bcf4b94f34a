"""The virtual desktop of the scenes: programs, waiting, colours, screenshots."""

import os
import subprocess
import time
from collections.abc import Callable, Iterator
from contextlib import contextmanager
from dataclasses import dataclass
from pathlib import Path

PICTURES = Path(__file__).resolve().parents[2] / "build/run"
#: The window manager's settings: the editor is maximised.
_MAXIMISED = """<openbox_config xmlns="http://openbox.org/3.4/rc"><applications><application class="Mousepad">
  <decor>no</decor><maximized>yes</maximized>
</application></applications></openbox_config>
"""
_EDITOR = """
[org/xfce/mousepad/preferences/view]
use-default-monospace-font=false
font-name='DejaVu Sans 12'
word-wrap=true
[org/xfce/mousepad/preferences/file]
session-restore='never'
"""
#: Margins around the text; the second one hides the warning that the editor shows to root.
_STYLE = """
notebook > stack { padding: 14px 22px; background-color: @theme_base_color; }
scrolledwindow { border: none; }
"""
_STYLE_FOR_ROOT = ":not(menuitem) > label { background-color: transparent; color: transparent; font-size: 1px; }\n"


class Failed(Exception):
    """What did not happen, in the user's language."""


def output(*command: str) -> str:
    return subprocess.run(command, capture_output=True, text=True, timeout=20).stdout.strip()


def await_that(what: str, reached: Callable[[], object], seconds: float = 10.0, pause: float = 0.02):
    """Waits until `reached` returns something true, and returns that."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if value := reached():
            return value
        time.sleep(pause)
    raise Failed(f"{what} – auch nach {seconds:.0f} s nicht.")


def folder(variable: str) -> Path:
    return Path(os.environ[variable])


@contextmanager
def program(name: str, *command: str, **environment: str) -> Iterator[subprocess.Popen]:
    """Runs a program during the `with` block; its output goes to the desktop's logs."""
    with open(folder("DESKTOP_DIR") / "log" / name, "a") as log:
        try:
            process = subprocess.Popen(
                command, stdin=subprocess.DEVNULL, stdout=log, stderr=log, env={**os.environ, **environment}
            )
        except OSError as error:
            raise Failed(f"{command[0]} lässt sich nicht starten: {error.strerror}") from error
    try:
        yield process
    finally:
        process.terminate()
        try:
            process.wait(10)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()


def furnish() -> None:
    """Writes the settings of the desktop, before any program starts."""
    configuration = folder("XDG_CONFIG_HOME")
    for name in ("glib-2.0/settings", "gtk-3.0", "openbox"):
        (configuration / name).mkdir(parents=True, exist_ok=True)
    with open(configuration / "glib-2.0/settings/keyfile", "a") as settings:
        settings.write(_EDITOR)
    style = _STYLE + (_STYLE_FOR_ROOT if os.geteuid() == 0 else "")
    (configuration / "gtk-3.0/gtk.css").write_text(style)
    (configuration / "openbox/rc.xml").write_text(_MAXIMISED)
    output("openbox", "--reconfigure")


def photograph(name: str) -> Path:
    file = PICTURES / f"{name}.png"
    output("import", "-window", "root", str(file))
    return file


@dataclass(frozen=True)
class Appearance:
    name: str
    #: The portal's value of color-scheme.
    scheme: int
    gtk_theme: str


LIGHT = Appearance("hell", 0, "Adwaita")
DARK = Appearance("dunkel", 1, "Adwaita:dark")


class Portal:
    """A stand-in for the desktop's portal that reports the user's colour scheme."""

    _NAME, _PATH = "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"
    _INTERFACE = "org.freedesktop.portal.Settings"
    COMMAND = ("/usr/bin/python3", "-m", "dbusmock", "--session", _NAME, _PATH, _INTERFACE)

    def _mock(self, method: str, *arguments: str) -> str:
        return output("gdbus", "call", "--session", "-d", self._NAME, "-o", self._PATH, "-m",
                      f"org.freedesktop.DBus.Mock.{method}", *arguments)  # fmt: skip

    def show(self, appearance: Appearance) -> None:
        answer = f"ret = dbus.UInt32({appearance.scheme}, variant_level=1)"
        await_that("Das Portal antwortet", lambda: self._mock("AddMethod", self._INTERFACE, "Read", "ss", "v", answer))
        wish = f"[<'org.freedesktop.appearance'>, <'color-scheme'>, <<uint32 {appearance.scheme}>>]"
        self._mock("EmitSignal", self._INTERFACE, "SettingChanged", "ssv", wish)
        output("xfconf-query", "-c", "xfce4-panel", "-p", "/panels/dark-mode", "-s", str(appearance is DARK).lower())
