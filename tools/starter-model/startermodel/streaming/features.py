"""Log-mel features as the run-time library computes them: Kaldi's way with 80 bins, without dither."""

from dataclasses import dataclass
from multiprocessing import Pool
from pathlib import Path

import numpy as np

from .. import acoustics
from ..speech import Recording

BINS = 80
_SHIFT, _WINDOW, _TRANSFORM = 160, 400, 512
_LOWEST, _HIGHEST = 20, 7600
_PREEMPHASIS = 0.97
_LEAST_ENERGY = 1.19e-7
_PROCESSES = 2


def _mel(hertz: np.ndarray | float) -> np.ndarray:
    return 1127 * np.log(1 + np.asarray(hertz) / 700)


def _filters() -> np.ndarray:
    """Overlapping triangles, evenly spaced in mel; one column a bin."""
    edges = np.linspace(_mel(_LOWEST), _mel(_HIGHEST), BINS + 2)
    left, centre, right = edges[:-2], edges[1:-1], edges[2:]
    mel = _mel(np.arange(_TRANSFORM // 2 + 1) * acoustics.SAMPLE_RATE / _TRANSFORM)[:, None]
    rising, falling = (mel - left) / (centre - left), (right - mel) / (right - centre)
    return np.maximum(0, np.minimum(rising, falling)).astype(np.float32)


_FILTERS = _filters()
_POVEY_WINDOW = (np.hanning(_WINDOW) ** 0.85).astype(np.float32)


def features(samples: np.ndarray) -> np.ndarray:
    """16-bit samples -> frames × bins; frames reach over both ends of the audio, mirrored there."""
    scaled = samples.astype(np.float32) / 32768
    count = (len(scaled) + _SHIFT // 2) // _SHIFT
    before = (_WINDOW - _SHIFT) // 2
    mirrored = np.concatenate([scaled[:before][::-1], scaled, scaled[-_WINDOW:][::-1]])
    frames = np.lib.stride_tricks.sliding_window_view(mirrored, _WINDOW)[::_SHIFT][:count]
    frames = frames - frames.mean(axis=1, keepdims=True)
    first = frames[:, :1] * (1 - _PREEMPHASIS)
    frames = np.concatenate([first, frames[:, 1:] - _PREEMPHASIS * frames[:, :-1]], axis=1) * _POVEY_WINDOW
    power = np.abs(np.fft.rfft(frames, _TRANSFORM)).astype(np.float32) ** 2
    return np.log(np.maximum(power @ _FILTERS, _LEAST_ENERGY))


def of_file(path: Path) -> np.ndarray:
    return features(acoustics.read(path)).astype(np.float16)


@dataclass(frozen=True)
class Corpus:
    """Features and token numbers of all recordings."""

    frames: list[np.ndarray]
    tokens: list[list[int]]


def corpus(recordings: list[Recording], tokens: list[list[int]]) -> Corpus:
    with Pool(_PROCESSES) as pool:
        frames = pool.map(of_file, [recording.path for recording in recordings], 64)
    return Corpus(frames, tokens)
