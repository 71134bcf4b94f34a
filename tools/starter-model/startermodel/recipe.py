"""The steps from nothing to both models and the report, in order; each leaves its product in the work folder."""

import time
from collections.abc import Callable, Iterator
from dataclasses import dataclass
from functools import cached_property
from pathlib import Path

from . import acoustic, folders, languagemodel, lexicon, report, speech, testspeech
from .acoustic import Size
from .sentences import Generator, vocabulary
from .speech import Condition
from .streaming import features, letters, training
from .streaming.network import Encoder
from .streaming.training import Plan
from .words import everyday, subject_matter

_LANGUAGE_SEED, _TRAINING_SEED, _VOICE_SEED = 8, 3003, 5000
_LONGEST_WORDS = 22
_LEXICON_SENTENCES = 4000


@dataclass(frozen=True)
class Scale:
    """How much of everything."""

    language_sentences: int
    #: For training; the acoustic model takes the first of them, the streaming model all.
    recordings: int
    acoustic_recordings: int
    acoustic_size: Size
    streaming_plan: Plan
    #: Sentences per condition.
    tests: int


FULL = Scale(
    language_sentences=120_000, recordings=14_000, acoustic_recordings=9_000, acoustic_size=Size(2000, 16),
    streaming_plan=Plan(width=288, epochs=12), tests=150,
)
#: Only proves that the recipe runs; its models understand little. sphinxtrain refuses less than half an hour of
#: speech, and speech in which a phone of the lexicon does not occur.
SMOKE = Scale(
    language_sentences=2_000, recordings=550, acoustic_recordings=550, acoustic_size=Size(100, 1),
    streaming_plan=Plan(width=32, epochs=1), tests=4,
)


@dataclass(frozen=True)
class Recipe:
    #: Where everything is made: audio, training data, logs.
    work: Path
    scale: Scale
    classic_model: Path
    streaming_model: Path
    report: Path
    human_recordings: Path

    def run(self) -> None:
        """Does what is not done yet."""
        self._done.mkdir(parents=True, exist_ok=True)
        for name, step in self._steps():
            mark = self._done / name
            if mark.exists():
                print(f"{name}: done before")
                continue
            print(f"{name} …", flush=True)
            started = time.monotonic()
            step()
            seconds = time.monotonic() - started
            mark.write_text(f"{seconds:.0f}\n")
            print(f"{name}: {seconds:.0f} s", flush=True)

    def _steps(self) -> Iterator[tuple[str, Callable[[], None]]]:
        yield "lexicon", self._make_lexicon
        yield "speech", self._record_training_speech
        yield "test-speech", self._record_test_speech
        yield "language-model", self._make_language_model
        yield "acoustic-model", self._train_acoustic_model
        yield "classic-folder", self._make_classic_folder
        yield "streaming-model", self._train_streaming_model
        yield "streaming-folder", self._make_streaming_folder
        yield "report", self._write_report

    # Places

    @property
    def _done(self) -> Path:
        return self.work / "done"

    @property
    def _dictionary(self) -> Path:
        return self.work / "de.dic"

    @property
    def _phones(self) -> Path:
        return self.work / "de.phone"

    @property
    def _language_model(self) -> Path:
        return self.work / "de.lm.bin"

    @property
    def _training_speech(self) -> Path:
        return self.work / "speech" / "training"

    @property
    def _test_speech(self) -> Path:
        return self.work / "speech" / "test"

    @property
    def _acoustic_folder(self) -> Path:
        return self.work / "acoustic"

    @property
    def _network(self) -> Path:
        return self.work / "network.pt"

    # Text

    @cached_property
    def _language_sentences(self) -> list[str]:
        return Generator(_LANGUAGE_SEED).sentences(self.scale.language_sentences)

    def _training_sentences(self) -> list[str]:
        sentences = Generator(_TRAINING_SEED).sentences(self.scale.recordings)
        return [" ".join(sentence.split()[:_LONGEST_WORDS]) for sentence in sentences]

    def _make_lexicon(self) -> None:
        heard = vocabulary(self._language_sentences) | vocabulary(self._training_sentences())
        words = heard | {*everyday(), *subject_matter()}
        lexicon.write(
            lexicon.build(words, self._language_sentences[:_LEXICON_SENTENCES]), self._dictionary, self._phones
        )

    def _make_language_model(self) -> None:
        languagemodel.build(self._language_sentences, self.work / "de.arpa", self._language_model)

    # Speech

    def _record_training_speech(self) -> None:
        speech.record_all(self._training_speech, self._training_sentences(), Condition.TRAINING, _VOICE_SEED)

    def _record_test_speech(self) -> None:
        testspeech.record(self._test_speech, self.scale.tests)

    # The classic model

    def _train_acoustic_model(self) -> None:
        recordings = speech.recordings_of(self._training_speech)[: self.scale.acoustic_recordings]
        acoustic.prepare(self._acoustic_folder, recordings, self._dictionary, self._phones, self.scale.acoustic_size)
        acoustic.train(self._acoustic_folder)

    def _make_classic_folder(self) -> None:
        folders.make_classic(
            self.classic_model, self._acoustic_folder, self.scale.acoustic_size, self._dictionary, self._phones,
            self._language_model,
        )

    # The streaming model

    def _encoder(self) -> Encoder:
        return training.load(self._network, self.scale.streaming_plan)

    def _train_streaming_model(self) -> None:
        recordings = speech.recordings_of(self._training_speech)
        tokens = [letters.encode(recording.sentence) for recording in recordings]
        samples = testspeech.samples(self._test_speech, "unseen")[:40]
        training.train(training.Task(
            features.corpus(recordings, tokens), self.scale.streaming_plan, self._network,
            lambda encoder: report.progress(encoder, samples),
        ))

    def _make_streaming_folder(self) -> None:
        folders.make_streaming(self.streaming_model, self._encoder())

    # Figures

    def _write_report(self) -> None:
        subject = report.Subject(
            self.classic_model, self.streaming_model, self._encoder(), self._test_speech,
            self.human_recordings, self._durations(),
        )
        self.report.write_text(report.text(subject), encoding="utf-8")

    def _durations(self) -> dict[str, int]:
        marks = ((name, self._done / name) for name, _ in self._steps())
        return {name: int(mark.read_text()) for name, mark in marks if mark.exists()}
