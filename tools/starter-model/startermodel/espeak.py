"""espeak-ng, called as a program: German text to phonemes and to speech."""

import re
import subprocess
from dataclasses import dataclass

import numpy as np

SAMPLE_RATE = 22050
_WAVE_HEADER_BYTES = 44


@dataclass(frozen=True)
class Voice:
    """How a sentence is spoken; `variant` is one of espeak-ng's voice variants, such as "f4"."""

    variant: str
    words_per_minute: int
    pitch: int
    word_gap: int


def phonemes(clauses: list[str]) -> list[str]:
    """The IPA of each clause, phonemes separated by "_" and words by blanks."""
    # An empty line ends a clause, so that each one gets a line of its own in the output.
    found = _phoneme_lines("".join(clause + "\n\n" for clause in clauses))
    if len(found) == len(clauses):
        return found
    return [" ".join(_phoneme_lines(clause)) for clause in clauses]


def _phoneme_lines(text: str) -> list[str]:
    command = ["espeak-ng", "-v", "de", "-q", "--ipa", "--sep=_"]
    output = subprocess.run(command, input=text, capture_output=True, text=True, check=True).stdout
    return [line.strip() for line in output.splitlines() if line.strip()]


def speak(text: str, voice: Voice) -> tuple[np.ndarray, list[str]]:
    """Samples in [-1, 1] at `SAMPLE_RATE`, and the phonemes of each word as they were spoken."""
    command = [
        "espeak-ng", "-v", f"de+{voice.variant}", "-s", str(voice.words_per_minute), "-p", str(voice.pitch),
        "-g", str(voice.word_gap), "--stdout", "--ipa", "--sep=_", "--phonout=/dev/stderr",
    ]
    done = subprocess.run(command, input=text.encode(), capture_output=True, check=True)
    samples = np.frombuffer(done.stdout[_WAVE_HEADER_BYTES : len(done.stdout) // 2 * 2], dtype="<i2")
    return samples.astype(np.float32) / 32768, re.split(r"\s+", done.stderr.decode().strip())
