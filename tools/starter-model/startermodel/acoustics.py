"""What happens to a voice between mouth and file: another speaker's size, a room, a microphone, noise.

All functions take and return samples; chance comes from the caller's seeded source.
"""

import random
import wave
from pathlib import Path

import numpy as np
from scipy import signal

SAMPLE_RATE = 16000
_SMALLEST = 1e-9
#: Filters white noise to pink.
_PINK = ([0.049922035, -0.095993537, 0.050612699, -0.004408786], [1, -2.494956002, 2.017265875, -0.522189400])


def warped(samples: np.ndarray, rate: int, factor: float) -> np.ndarray:
    """Resampled to `SAMPLE_RATE`; a factor above 1 moves formants and pitch up and makes it faster."""
    coarse = 50  # Hz; keeps the two integers of the ratio small
    return signal.resample_poly(samples, round(SAMPLE_RATE / factor / coarse), rate // coarse).astype(np.float32)


def normalised(samples: np.ndarray) -> np.ndarray:
    return samples / (np.max(np.abs(samples)) + _SMALLEST)


def _white(count: int, source: random.Random) -> np.ndarray:
    return np.random.default_rng(source.randint(0, 1 << 30)).standard_normal(count).astype(np.float32)


def in_room(samples: np.ndarray, source: random.Random) -> np.ndarray:
    """With the decaying echo of a small room."""
    length = int(source.uniform(0.05, 0.3) * SAMPLE_RATE)
    echo = _white(length, source) * np.exp(-6.9 * np.arange(length) / length)
    response = np.concatenate([[1.0], echo * source.uniform(0.02, 0.12)])
    return signal.fftconvolve(samples, response)[: len(samples) + length // 2].astype(np.float32)


def through_microphone(samples: np.ndarray, source: random.Random) -> np.ndarray:
    """Coloured as by a tilted, a narrow, a dull or (every fifth time) a perfect microphone."""
    kind = source.random()
    nyquist = SAMPLE_RATE / 2
    if kind < 0.4:
        return signal.lfilter([1, source.uniform(-0.5, 0.5)], [1], samples)
    if kind < 0.55:
        band = [source.uniform(80, 250) / nyquist, source.uniform(3600, 7000) / nyquist]
        return signal.lfilter(*signal.butter(2, band, "band"), samples)
    if kind < 0.8:
        dull = signal.lfilter(*signal.butter(1, source.uniform(0.03, 0.25), "low"), samples)
        share = source.uniform(0.2, 0.8)
        return (1 - share) * samples + share * dull * 1.5
    return samples


def _noise(count: int, source: random.Random) -> np.ndarray:
    kind = source.choice(["white", "pink", "pink", "rumble", "hum"])
    white = _white(count, source)
    if kind == "white":
        return white
    if kind == "pink":
        return signal.lfilter(*_PINK, white)
    rumble = signal.lfilter([1], [1, -0.97], white)
    if kind == "rumble":
        return rumble
    seconds, base = np.arange(count) / SAMPLE_RATE, source.choice([50, 60, 100, 120])
    tones = (np.sin(2 * np.pi * base * k * seconds + source.random() * 6) / k for k in range(1, 6))
    return sum(tones) + 0.05 * rumble


def with_noise(samples: np.ndarray, decibels: float, source: random.Random) -> np.ndarray:
    """`decibels` is how far the voice stands above the noise."""
    noise = _noise(len(samples), source)
    ratio = np.mean(samples**2) / (np.mean(noise**2) + _SMALLEST)
    return samples + noise * np.sqrt(ratio / 10 ** (decibels / 10))


def with_silence(samples: np.ndarray, source: random.Random) -> np.ndarray:
    """Between pauses of 0.1 to 0.45 seconds."""
    before, after = (np.zeros(int(source.uniform(0.1, 0.45) * SAMPLE_RATE), np.float32) for _ in range(2))
    return np.concatenate([before, samples, after])


def write(path: Path, samples: np.ndarray) -> None:
    with wave.open(str(path), "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(SAMPLE_RATE)
        file.writeframes((np.clip(samples, -1, 1) * 32767).astype("<i2").tobytes())


def read(path: Path) -> np.ndarray:
    """16-bit samples of a file at `SAMPLE_RATE`."""
    with wave.open(str(path)) as file:
        if (file.getframerate(), file.getnchannels(), file.getsampwidth()) != (SAMPLE_RATE, 1, 2):
            raise ValueError(f"{path} is not 16 kHz, mono, 16 bit")
        return np.frombuffer(file.readframes(file.getnframes()), "<i2")
