"""Measures both models the way the program uses them: audio comes in blocks, the text is read as it grows."""

import time
from collections.abc import Iterable
from dataclasses import dataclass, field
from pathlib import Path
from statistics import median, quantiles

import numpy as np
import torch

from . import acoustics, espeak, lexicon
from .pocketsphinx import BLOCK_SAMPLES, Decoder
from .streaming import letters
from .streaming.features import features
from .streaming.network import STACKED_FRAMES, Encoder
from .testspeech import Sample
from .worderrors import WordErrors

#: The share of the language model that contextual words get.
CONTEXT_WEIGHT = 1e-6
#: The run-time library wants silence behind the last word.
_CLOSING_SILENCE = np.zeros(acoustics.SAMPLE_RATE // 2, np.int16)


@dataclass
class Result:
    words: WordErrors = field(default_factory=WordErrors)
    audio_seconds: float = 0
    computing_seconds: float = 0
    #: From the end of the audio to the final text.
    latencies: list[float] = field(default_factory=list)
    #: How much audio had come in when the first word appeared.
    first_texts: list[float] = field(default_factory=list)
    changes: int = 0

    @property
    def real_time_factor(self) -> float:
        return self.computing_seconds / self.audio_seconds

    @property
    def median_latency(self) -> float:
        return median(self.latencies)

    @property
    def high_latency(self) -> float:
        """The 95th percentile."""
        return quantiles(self.latencies, n=20)[-1]


def _understood(decoder: Decoder, sample: Sample, result: Result) -> str:
    audio, last = acoustics.read(sample.path), ""
    started = time.process_time()
    decoder.start()
    for start in range(0, len(audio), BLOCK_SAMPLES):
        text = decoder.feed(audio[start : start + BLOCK_SAMPLES])
        if text and not last:
            result.first_texts.append(min(start + BLOCK_SAMPLES, len(audio)) / acoustics.SAMPLE_RATE)
        result.changes += text != last
        last = text
    ended = time.perf_counter()
    text = decoder.finish()
    result.latencies.append(time.perf_counter() - ended)
    result.computing_seconds += time.process_time() - started
    result.audio_seconds += sample.seconds
    result.words.add(sample.sentence, text)
    return text


def measure_classic(decoder: Decoder, samples: Iterable[Sample]) -> Result:
    result = Result()
    for sample in samples:
        _understood(decoder, sample, result)
    return result


@dataclass
class ContextResult:
    result: Result
    found: int = 0
    wanted: int = 0


def measure_context(decoder: Decoder, samples: Iterable[tuple[str, Sample]]) -> ContextResult:
    """How many of the rare words are found."""
    measured = ContextResult(Result())
    for word, sample in samples:
        measured.found += word in _understood(decoder, sample, measured.result).split()
        measured.wanted += 1
    return measured


def pronounced(words: Iterable[str]) -> dict[str, str]:
    """Each word with the phones that the program would give it at run time."""
    unique = list(dict.fromkeys(words))
    return {word: lexicon.pronunciation(ipa) for word, ipa in zip(unique, espeak.phonemes(unique))}


def resident_megabytes() -> float:
    with open("/proc/self/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * 4096 / 1e6


@dataclass(frozen=True)
class Loading:
    seconds: float
    megabytes: float


def measure_loading(folder: Path, samples: list[Sample]) -> Loading:
    """Time until the model is ready, and memory with it after some work."""
    before, started = resident_megabytes(), time.perf_counter()
    decoder = Decoder(folder)
    seconds = time.perf_counter() - started
    measure_classic(decoder, samples[:20])
    megabytes = resident_megabytes() - before
    decoder.close()
    return Loading(seconds, megabytes)


def _greedy(probabilities: torch.Tensor) -> str:
    best = probabilities.argmax(-1).tolist()
    return letters.decode([token for before, token in zip([0, *best], best) if token not in (0, before)])


def measure_streaming(encoder: Encoder, samples: Iterable[Sample]) -> Result:
    """Greedy search over the network's output; the run-time library's search finds the same words."""
    result = Result()
    for sample in samples:
        audio = np.concatenate([acoustics.read(sample.path), _CLOSING_SILENCE])
        started = time.process_time()
        frames = torch.from_numpy(features(audio))
        frames = frames[: len(frames) // STACKED_FRAMES * STACKED_FRAMES]
        with torch.no_grad():
            probabilities, _, _ = encoder(frames[None], *encoder.initial_state(1))
        text = _greedy(probabilities[0])
        result.computing_seconds += time.process_time() - started
        result.audio_seconds += sample.seconds
        result.words.add(sample.sentence, text)
    return result
