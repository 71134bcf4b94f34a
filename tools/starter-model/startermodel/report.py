"""REPORT.md: how well both models understand, and how that was measured."""

import datetime
import subprocess
from collections.abc import Iterable
from dataclasses import dataclass
from pathlib import Path
from statistics import mean

from . import evaluation, lexicon, testspeech
from .evaluation import ContextResult, Result
from .pocketsphinx import Decoder
from .streaming.network import Encoder
from .testspeech import Sample

_PACKAGES = (
    "espeak-ng sphinxtrain sphinxbase-utils libpocketsphinx3 python3-numpy python3-scipy python3-torch python3-onnx"
).split()
_HUMAN_TITLE = "human recordings"


@dataclass(frozen=True)
class Subject:
    classic_model: Path
    streaming_model: Path
    encoder: Encoder
    test_speech: Path
    human_recordings: Path
    #: Of the steps, in seconds.
    durations: dict[str, int]


def progress(encoder: Encoder, samples: list[Sample]) -> str:
    """A line for the training log."""
    return f"word errors {evaluation.measure_streaming(encoder, samples).words.rate:.1f} %"


def _table(head: Iterable[str], rows: Iterable[Iterable[str]]) -> str:
    head = list(head)
    lines = [head, ["---"] * len(head), *rows]
    return "\n".join("| " + " | ".join(line) + " |" for line in lines)


def _sample_sets(subject: Subject) -> dict[str, list[Sample]]:
    sets = {test.title: testspeech.samples(subject.test_speech, test.name) for test in testspeech.SETS}
    human = testspeech.human_samples(subject.human_recordings)
    if human:
        sets[f"{_HUMAN_TITLE} ({len(human)})"] = human
    else:
        print(f"  no human recordings in {subject.human_recordings}, measured without them")
    return sets


def _error_row(title: str, samples: list[Sample], result: Result, known: set[str]) -> list[str]:
    words = [word.lower() for sample in samples for word in sample.sentence.split()]
    unknown = 100 * sum(word not in known for word in words) / len(words)
    errors = result.words
    return [
        title, f"{errors.rate:.1f} %", f"{errors.rate_with_case:.1f} %", f"{unknown:.1f} %",
        f"{errors.correct_sentences} of {errors.sentences}",
    ]


def _classic_section(subject: Subject, sets: dict[str, list[Sample]]) -> str:
    first, *_ = sets.values()
    loading = evaluation.measure_loading(subject.classic_model, first)
    decoder = Decoder(subject.classic_model)
    results = {title: evaluation.measure_classic(decoder, samples) for title, samples in sets.items()}
    decoder.close()
    known = {word.lower() for word in lexicon.read_words(subject.classic_model / "de.dic")}
    errors = _table(
        ("condition", "word errors", "with letter case", "unknown words", "sentences without error"),
        (_error_row(title, samples, results[title], known) for title, samples in sets.items()),
    )
    synthetic = [result for title, result in results.items() if not title.startswith(_HUMAN_TITLE)]
    latencies = [latency for result in synthetic for latency in result.latencies]
    together = Result(latencies=latencies)
    speed = _table(("figure", "value"), (
        ("real-time factor (computing time to audio)", f"{mean(each.real_time_factor for each in synthetic):.3f}"),
        ("loading", f"{loading.seconds:.2f} s"),
        ("memory", f"{loading.megabytes:.0f} MB"),
        ("end of audio to final text, median", f"{1000 * together.median_latency:.0f} ms"),
        ("the same, 95th percentile", f"{1000 * together.high_latency:.0f} ms"),
        ("audio until the first word", f"{mean(t for each in synthetic for t in each.first_texts):.2f} s"),
        ("changes of the text per utterance",
         f"{sum(each.changes for each in synthetic) / sum(each.words.sentences for each in synthetic):.0f}"),
        ("words", str(len(lexicon.read_words(subject.classic_model / "de.dic")))),
        ("size of the folder", _size(subject.classic_model)),
    ))
    return f"{errors}\n\n{speed}\n\n{_context(subject, sets)}"


def _context(subject: Subject, sets: dict[str, list[Sample]]) -> str:
    """Rare words without and with being given to the decoder, and what giving them does to other text."""
    samples = list(testspeech.context_samples(subject.test_speech))
    plain = Decoder(subject.classic_model)
    without = evaluation.measure_context(plain, samples)
    plain.close()
    decoder = Decoder(subject.classic_model)
    decoder.add_words(evaluation.pronounced(word for word, _ in samples), evaluation.CONTEXT_WEIGHT)
    given = evaluation.measure_context(decoder, samples)
    unharmed = next(test.title for test in testspeech.SETS if test.name == "unseen")
    other = evaluation.measure_classic(decoder, sets[unharmed])
    decoder.close()

    def row(title: str, measured: ContextResult) -> tuple[str, str, str]:
        return title, f"{measured.found} of {measured.wanted}", f"{measured.result.words.rate:.1f} %"

    table = _table(("rare words", "found", "word errors"), (row("not given", without), row("given", given)))
    return f"{table}\n\nWith the rare words given, “{unharmed}” has {other.words.rate:.1f} % word errors."


def _streaming_section(subject: Subject, sets: dict[str, list[Sample]]) -> str:
    results = {
        title: evaluation.measure_streaming(subject.encoder, samples)
        for title, samples in sets.items()
    }
    errors = _table(("condition", "word errors", "sentences without error"), (
        (title, f"{each.words.rate:.1f} %", f"{each.words.correct_sentences} of {each.words.sentences}")
        for title, each in results.items()
    ))
    factor = mean(result.real_time_factor for result in results.values())
    size = _size(subject.streaming_model)
    return f"{errors}\n\nReal-time factor {factor:.3f} on one core; size of the folder {size}."


def _size(folder: Path) -> str:
    return f"{sum(path.stat().st_size for path in folder.iterdir()) / 1e6:.1f} MB"


def _versions() -> str:
    command = ["dpkg-query", "-W", "-f", "${Package} ${Version}\n", *_PACKAGES]
    listed = subprocess.run(command, capture_output=True, text=True, check=False).stdout
    return ", ".join(listed.splitlines())


def text(subject: Subject) -> str:
    sets = _sample_sets(subject)
    steps = _table(("step", "minutes"), ((name, f"{seconds / 60:.1f}") for name, seconds in subject.durations.items()))
    return f"""# How well the models understand

Written by `make` on {datetime.date.today().isoformat()}. Both models know synthetic voices only: the figures say
how well they do their duty in demonstrations and tests, not how well they would understand a person.

## Classic model

{_classic_section(subject, sets)}

## Streaming model

{_streaming_section(subject, sets)}

## How it was measured

The test sentences come from the same templates with other seeds, or were written by hand (`texts/free.txt`,
`texts/context.txt`; each of these was spoken twice). Unseen voices are never used in training, and speak at 100 to
210 words per minute. Word errors are insertions, deletions and substitutions per spoken word, regardless of letter
case where not said otherwise; unknown words are part of them. Where more is invented than was said, they exceed 100 %.

The classic model is measured through PocketSphinx's C library with the options of its folder, in blocks of 100 ms as
from a microphone, reading the text after each. Given words have espeak-ng's pronunciation and share
{evaluation.CONTEXT_WEIGHT:g} of the language model. The streaming model is measured with the trained network and greedy
search; the run-time library's search comes to the same words. Its text has no letter case.

Computing time is processor time; loading and latencies are clock time on a machine of two cores that did other work
besides. Human recordings are read where they are and belong to no training.

## Training

Clock time on the same machine, at the lowest priority.

{steps}

Versions: {_versions()}.
"""
