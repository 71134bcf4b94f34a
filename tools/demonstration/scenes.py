"""The scenes: a letter in light colours, a file note in dark ones, each with the menu."""

import subprocess
import time
from collections.abc import Iterator
from contextlib import contextmanager
from dataclasses import dataclass
from pathlib import Path

from .desktop import DARK, LIGHT, Appearance, Failed, Portal, await_that, folder, photograph, program
from .editor import Editor
from .querlin import Querlin

_SAMPLES_A_SECOND, _BYTES_IN_A_SAMPLE = 48000, 4


@dataclass(frozen=True)
class Recording:
    name: str
    #: The expected text.
    text: str


LETTER = Recording(
    "TestBefehle",
    "Sehr geehrte Damen und Herren,\nWir bitten Sie den Betreuten in die Liste aufzunehmen.\n\n"
    "Mit freundlichen Grüßen\nHanna Quellmann.",
)
NOTE = Recording(
    "Testdiktat",
    "Vermerk:\nTelefonat mit dem Jobcenter am dritten März. Aktenzeichen vier F zwei hundert elf Schrägstrich"
    " vierundzwanzig.\nDie Genehmigung nach § 1850 BGB wird beantragt.",
)


@dataclass
class Voice:
    process: subprocess.Popen
    seconds: float

    def until(self, part: float) -> None:
        """Waits until this part of the recording has been spoken."""
        time.sleep(self.seconds * part)

    def to_the_end(self) -> None:
        self.process.wait(60)


@dataclass
class Stage:
    querlin: Querlin
    #: The build folder.
    build: Path

    def show(self, recording: Recording, appearance: Appearance, with_picture: bool) -> None:
        with program(f"mousepad-{appearance.name}", *Editor.COMMAND, GTK_THEME=appearance.gtk_theme):
            editor = Editor()
            with self.querlin.held_key(), self._spoken(recording) as voice:
                voice.until(0.55)
                photograph(f"aufnahme-{appearance.name}")
                voice.to_the_end()
            text = await_that("Der Text kommt im Editor an", editor.text, 15, pause=0)
            seconds = time.monotonic() - self.querlin.released
            self.querlin.await_rest()
            self._tell(f"{recording.name}, {appearance.name}", text, seconds)
            photograph(f"text-{appearance.name}")
            if text.rstrip("\n") != recording.text:
                raise Failed(f"Angekommen ist ein anderer Text als\n\n{recording.text}\n")
            with self.querlin.open_menu():
                photograph(f"menue-{appearance.name}")
            if with_picture:
                self._pose()

    def _pose(self) -> None:
        """Overlay and menu at the same time, over the letter."""
        with self.querlin.held_key(), self._spoken(NOTE) as voice:
            voice.until(0.7)
            with self.querlin.open_menu():
                photograph("overlay-und-menue")
        self.querlin.await_rest()

    def _tell(self, title: str, text: str, seconds: float) -> None:
        print(f"\n{title}: Im Editor steht\n")
        print("\n".join(f"    {line}".rstrip() for line in text.splitlines()))
        print(f"\n  {seconds:.2f} s vom Loslassen bis zum sichtbaren Text (Bedienungshilfen, auf 0,03 s genau)")
        if timing := self.querlin.says("[timing]"):
            print(f"  Protokoll: {timing.split('[timing] ')[1].split(' → ')[0]}")

    @contextmanager
    def _spoken(self, recording: Recording) -> Iterator[Voice]:
        samples = folder("DESKTOP_DIR") / f"{recording.name}.raw"
        decode = [self.build / "tools/recordings/decode", self.build / f"resources/Recordings/{recording.name}.m4a"]
        samples.write_bytes(subprocess.run(decode, capture_output=True, check=True).stdout)
        command = ("paplay", "--raw", "--format=float32ne", f"--rate={_SAMPLES_A_SECOND}", "--channels=1",
                   "--device=gesprochen", str(samples))  # fmt: skip
        with program("paplay", *command) as process:
            yield Voice(process, samples.stat().st_size / _BYTES_IN_A_SAMPLE / _SAMPLES_A_SECOND)


def perform(build: Path, with_picture: bool) -> None:
    portal = Portal()
    with program("portal", *Portal.COMMAND):
        portal.show(LIGHT)
        with program("querlin", str(build / "src/app/querlin")) as process:
            querlin = Querlin(process.pid)
            await_that("Querlin ist bereit", lambda: querlin.says("installHotkey → OK"), 20)
            stage = Stage(querlin, build)
            stage.show(LETTER, LIGHT, with_picture)
            portal.show(DARK)
            stage.show(NOTE, DARK, with_picture=False)
            print(f"\nSpeicher: {querlin.memory()}")
