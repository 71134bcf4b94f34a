"""What the models are measured with: sentences they were not trained on, spoken under several conditions."""

from collections.abc import Iterator
from dataclasses import dataclass
from pathlib import Path

from . import acoustics, speech
from .sentences import Generator
from .speech import Condition
from .words import lines

_TEXTS = Path(__file__).parent.parent / "texts"
_SENTENCE_SEED, _VOICE_SEED = 91, 700_000


@dataclass(frozen=True)
class Sample:
    path: Path
    sentence: str
    seconds: float


@dataclass(frozen=True)
class TestSet:
    """`title` is how the report calls it."""

    name: str
    title: str
    condition: Condition


_DRAWN = (
    TestSet("seen", "synthetic, voices of the training", Condition.SEEN),
    TestSet("unseen", "synthetic, unseen voices and speeds", Condition.UNSEEN),
    TestSet("noise", "the same with noise at 10 or 15 dB", Condition.NOISE),
)
_FREE = TestSet("free", "free hand-written sentences, unseen voices", Condition.UNSEEN)
_CONTEXT = TestSet("context", "rare words, unseen voices", Condition.UNSEEN)
SETS = (*_DRAWN, _FREE)


def rare_words() -> list[tuple[str, str]]:
    """Pairs of a word that no list knows and a sentence with it."""
    return [(word, sentence) for word, sentence in (row.split("\t") for row in lines(_TEXTS / "context.txt"))]


def record(folder: Path, count: int) -> None:
    """`count` drawn sentences per condition, and up to as many of the written ones; these are spoken twice."""
    free, rare = lines(_TEXTS / "free.txt"), [sentence for _, sentence in rare_words()]
    texts = {test: Generator(_SENTENCE_SEED + index).sentences(count) for index, test in enumerate(_DRAWN)}
    texts |= {_FREE: 2 * free[:count], _CONTEXT: 2 * rare[:count]}
    for index, (test, sentences) in enumerate(texts.items()):
        speech.record_all(folder / test.name, sentences, test.condition, _VOICE_SEED + 10_000 * index)


def samples(folder: Path, name: str) -> list[Sample]:
    return [Sample(each.path, each.sentence, each.seconds) for each in speech.recordings_of(folder / name)]


def context_samples(folder: Path) -> Iterator[tuple[str, Sample]]:
    """Each sample with the rare word in it."""
    words = {sentence: word for word, sentence in rare_words()}
    for sample in samples(folder, _CONTEXT.name):
        yield words[sample.sentence], sample


def human_samples(folder: Path) -> list[Sample]:
    """Recordings of people: every .wav with its sentence in a .txt beside it. They are only ever read."""
    found = []
    for path in sorted(folder.glob("*.wav")):
        text = path.with_suffix(".txt")
        if text.exists():
            seconds = len(acoustics.read(path)) / acoustics.SAMPLE_RATE
            found.append(Sample(path, " ".join(text.read_text(encoding="utf-8").split()), seconds))
    return found
