"""Spoken sentences: who says a sentence and how, and the recordings of a whole list of sentences.

A recording depends on its sentence, condition and seed alone: made again it is the same file.
"""

import random
from collections.abc import Iterable
from dataclasses import dataclass
from enum import Enum
from multiprocessing import Pool
from pathlib import Path

import numpy as np

from . import acoustics, espeak
from .numerals import NUMBER_WORDS

TRAINING_VOICES = (
    "m1 m2 m3 m4 m5 m7 m8 f1 f2 f3 f5 klatt klatt2 klatt4 klatt5 klatt6 Alex Alicia Andrea Andy Annie antonio"
    " aunty belinda benjamin boris caleb david Denis Diogo ed edward2 Gene Gene2 gustave Henrique marcelo Marco"
    " Mario max miguel pedro quincy rob robert steph steph2 Storm travis victor zac anika grandpa norbert"
    " shelby adam paul Jacky john Lee iven iven2 pablo UniRobot robosoft5 michel Nguyen kaukovalta anikaRobot"
).split()
UNSEEN_VOICES = "f4 m6 Michael linda edward Hugo klatt3 sandro".split()
SILENCE = "<sil>"
_PROCESSES = 2
_SHORTEST_SAMPLES = 2000
_MARKS = {"Komma", "Punkt", "Doppelpunkt", "Semikolon", "Fragezeichen", "Ausrufezeichen", "neuer", "neue", "Klammer"}
_SENTENCE_MARKS = {"Komma", "Punkt", "Doppelpunkt"}


class Condition(Enum):
    TRAINING = "training"
    SEEN = "seen"
    UNSEEN = "unseen"
    NOISE = "noise"


@dataclass(frozen=True)
class Order:
    path: Path
    sentence: str
    condition: Condition
    seed: int


@dataclass(frozen=True)
class Recording:
    path: Path
    sentence: str
    #: The sentence with `SILENCE` where the voice paused; what acoustic training needs.
    aligned: str
    seconds: float


@dataclass
class _Token:
    """What espeak-ng is given as one word, and the words of ours that it stands for."""

    words: list[str]
    pauses_after: bool = False

    @property
    def text(self) -> str:
        return "".join(self.words) + ("," if self.pauses_after else "")


def _is_scale(word: str) -> bool:
    return word in ("hundert", "tausend")


def _tokens(sentence: str, source: random.Random) -> list[_Token]:
    """Numbers are mostly said in one breath: "acht hundert elf" -> "achthundertelf"."""
    groups: list[list[str]] = []
    for word in sentence.split():
        continues = groups and groups[-1][-1] in NUMBER_WORDS and (
            _is_scale(word) or (word in NUMBER_WORDS and _is_scale(groups[-1][-1]))
        )
        if continues:
            groups[-1].append(word)
        else:
            groups.append([word])
    tokens: list[_Token] = []
    for group in groups:
        is_joined = len(group) > 1 and source.random() < 0.75
        tokens += [_Token(group)] if is_joined else [_Token([word]) for word in group]
    return tokens


def _add_pauses(tokens: list[_Token], source: random.Random) -> None:
    """Speakers rest before and behind the marks they dictate."""
    for before, token in zip([None, *tokens], tokens):
        if before and token.words[0] in _MARKS and source.random() < 0.35:
            before.pauses_after = True
        if token.words[0] in _SENTENCE_MARKS and source.random() < 0.25:
            token.pauses_after = True


def _aligned(tokens: list[_Token], phonemes: list[str]) -> str:
    """espeak-ng shows pauses of its own by "__" at the end of a word."""
    words: list[str] = []
    knows_pauses = len(phonemes) == len(tokens)
    for index, token in enumerate(tokens):
        words += token.words
        if token.pauses_after or (knows_pauses and phonemes[index].endswith("__")):
            words.append(SILENCE)
    while words[-1] == SILENCE:
        words.pop()
    return " ".join(words)


def _voice(condition: Condition, source: random.Random) -> espeak.Voice:
    gap = source.choice([0, 0, 0, 0, 2, 4])
    if condition in (Condition.TRAINING, Condition.SEEN):
        return espeak.Voice(source.choice(TRAINING_VOICES), source.randint(115, 190), source.randint(15, 85), gap)
    slow, fast, usual = (100, 120), (190, 210), (130, 170)
    speed = source.randint(*source.choice([slow, fast, usual]))
    return espeak.Voice(source.choice(UNSEEN_VOICES), speed, source.randint(10, 90), gap)


def _recorded(samples: np.ndarray, condition: Condition, source: random.Random) -> np.ndarray:
    """Training hears every kind of room and noise; the tests keep to one kind each."""
    is_training = condition is Condition.TRAINING
    warp = source.uniform(0.86, 1.16) if is_training else source.uniform(0.9, 1.12)
    samples = acoustics.normalised(acoustics.warped(samples, espeak.SAMPLE_RATE, warp))
    if is_training and source.random() < 0.3:
        samples = acoustics.in_room(samples, source)
    samples = acoustics.with_silence(acoustics.through_microphone(samples, source), source)
    quiet, usual, loud, louder = (40, 60), (25, 40), (15, 30), (8, 20)
    decibels = {
        Condition.TRAINING: source.uniform(*source.choice([quiet, usual, loud, louder])),
        Condition.NOISE: source.choice([10.0, 15.0]),
    }.get(condition, 45.0)
    samples = acoustics.normalised(acoustics.with_noise(samples, decibels, source))
    return samples * 10 ** (-source.uniform(1, 16) / 20)


def record(order: Order) -> Recording | None:
    """Writes one recording; nothing if espeak-ng had hardly anything to say."""
    source = random.Random(order.seed)
    voice = _voice(order.condition, source)
    tokens = _tokens(order.sentence, source)
    _add_pauses(tokens, source)
    samples, phonemes = espeak.speak(" ".join(token.text for token in tokens), voice)
    if len(samples) < _SHORTEST_SAMPLES:
        return None
    samples = _recorded(samples, order.condition, source)
    acoustics.write(order.path, samples)
    return Recording(order.path, order.sentence, _aligned(tokens, phonemes), len(samples) / acoustics.SAMPLE_RATE)


def record_all(folder: Path, sentences: Iterable[str], condition: Condition, first_seed: int) -> list[Recording]:
    """Records into `folder` and leaves a list of the recordings beside it."""
    folder.mkdir(parents=True, exist_ok=True)
    orders = [
        Order(folder / f"{index:05d}.wav", sentence, condition, first_seed + index)
        for index, sentence in enumerate(sentences)
    ]
    with Pool(_PROCESSES) as pool:
        recordings = [recording for recording in pool.imap(record, orders, 32) if recording]
    rows = (f"{each.path.name}\t{each.sentence}\t{each.aligned}\t{each.seconds:.3f}\n" for each in recordings)
    folder.with_suffix(".tsv").write_text("".join(rows), encoding="utf-8")
    return recordings


def recordings_of(folder: Path) -> list[Recording]:
    """What `record_all` left."""
    rows = (row.split("\t") for row in folder.with_suffix(".tsv").read_text(encoding="utf-8").splitlines())
    return [Recording(folder / name, sentence, aligned, float(seconds)) for name, sentence, aligned, seconds in rows]
