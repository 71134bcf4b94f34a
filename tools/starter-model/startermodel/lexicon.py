"""The pronunciation lexicon: espeak-ng's phonemes, written in our own small phone set.

A word has its pronunciation alone and those that occur inside sentences, where espeak-ng weakens it.
"""

import re
from collections import Counter, defaultdict
from functools import cache
from pathlib import Path

from . import espeak

FOLDER = Path(__file__).parent.parent
PHONE_MAP = FOLDER / "phonemap.tsv"
_BATCH = 200
_MOST_PRONUNCIATIONS = 3
#: Inside sentences a pronunciation counts from this often, and from this share of the word's occurrences.
_LEAST_COUNT, _LEAST_SHARE = 3, 0.08
_UNSPOKEN = re.compile("[ˈˌ\u200d ]")
_LANGUAGE_SWITCHES = ("(en)", "(de)")

Lexicon = dict[str, list[str]]


def _table(path: Path) -> dict[str, str]:
    rows = (line.split("\t") for line in path.read_text(encoding="utf-8").splitlines())
    return {row[0]: row[1] if len(row) > 1 else "" for row in rows}


@cache
def _phone_map() -> dict[str, str]:
    return _table(PHONE_MAP)


@cache
def _letters() -> Lexicon:
    return {letter: spoken.split("|") for letter, spoken in _table(FOLDER / "letters.tsv").items()}


def _phones_of(phoneme: str) -> str:
    phone_map = _phone_map()
    for form in (phoneme, phoneme.replace("ː", "")):
        if form in phone_map:
            return phone_map[form]
    return " ".join(phone_map.get(character, "") for character in phoneme)


def pronunciation(ipa: str) -> str:
    """"h_aʊ_s" -> "H AU S"; phonemes without a phone of ours are left out."""
    phonemes = (_UNSPOKEN.sub("", part) for part in ipa.split("_"))
    spoken = (_phones_of(phoneme) for phoneme in phonemes if phoneme and phoneme not in _LANGUAGE_SWITCHES)
    return " ".join(" ".join(spoken).split())


def _batches(items: list[str]) -> list[list[str]]:
    return [items[start : start + _BATCH] for start in range(0, len(items), _BATCH)]


def _alone(words: list[str]) -> dict[str, str]:
    return {
        word: pronunciation(ipa.replace(" ", "_"))
        for batch in _batches(words)
        for word, ipa in zip(batch, espeak.phonemes(batch))
    }


def _inside(sentences: list[str]) -> dict[str, Counter[str]]:
    """Word -> how often which pronunciation occurs in the sentences."""
    heard: dict[str, Counter[str]] = defaultdict(Counter)
    for batch in _batches(sentences):
        for sentence, ipa in zip(batch, espeak.phonemes(batch)):
            words, spoken = sentence.split(), ipa.split()
            if len(words) == len(spoken):  # espeak-ng joins some words to one
                for word, phonemes in zip(words, spoken):
                    heard[word][pronunciation(phonemes)] += 1
    return heard


def _frequent(heard: Counter[str]) -> list[str]:
    least = max(_LEAST_COUNT, _LEAST_SHARE * heard.total())
    return [spoken for spoken, count in heard.most_common() if spoken and count >= least]


def build(words: set[str], sentences: list[str]) -> Lexicon:
    """Pronunciations of every word, its own first; `sentences` show how the words are weakened."""
    ordinary = sorted(words - _letters().keys())
    heard = _inside(sentences)
    lexicon = dict(_letters())
    for word, own in _alone(ordinary).items():
        variants = [spoken for spoken in _frequent(heard[word]) if spoken != own]
        lexicon[word] = [own, *variants][:_MOST_PRONUNCIATIONS]
    if silent := [word for word, spoken in lexicon.items() if not spoken[0]]:
        raise ValueError(f"no pronunciation for {silent}")
    return dict(sorted(lexicon.items()))


def write(lexicon: Lexicon, dictionary: Path, phones: Path) -> None:
    """In the form of PocketSphinx: further pronunciations of a word as "word(2)"."""
    with dictionary.open("w", encoding="utf-8") as file:
        for word, pronunciations in lexicon.items():
            for index, spoken in enumerate(pronunciations, 1):
                file.write(f"{word}{f'({index})' if index > 1 else ''} {spoken}\n")
    every_phone = {phone for spoken in lexicon.values() for each in spoken for phone in each.split()}
    phones.write_text("\n".join([*sorted(every_phone), "SIL"]) + "\n", encoding="utf-8")


def read_words(dictionary: Path) -> set[str]:
    rows = dictionary.read_text(encoding="utf-8").splitlines()
    return {re.sub(r"\(\d+\)$", "", row.split()[0]) for row in rows}
