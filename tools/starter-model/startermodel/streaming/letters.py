"""The tokens of the streaming model: letters, and the vocabulary files that list them.

CTC cannot tell a token said twice from one that lasts, so doubled letters are tokens of their own.
"""

from functools import cache
from pathlib import Path

BLANK = "<blk>"
#: Stands before every word.
WORD_START = "▁"
_LETTERS = "abcdefghijklmnopqrstuvwxyzäöüß"
#: Without "uu" and "hh": "betreuung" comes out as "betreung".
_DOUBLED = "aa bb dd ee ff gg kk ll mm nn oo pp rr ss tt zz cc".split()
TOKENS = (BLANK, WORD_START, *_LETTERS, *_DOUBLED)
#: High enough that the run-time library never splits doubled letters in a given word.
_DOUBLED_SCORE = -0.5


@cache
def _spell(word: str) -> tuple[int, ...]:
    """"kasse" -> the numbers of "▁", "k", "a", "ss", "e"."""
    numbers = [TOKENS.index(WORD_START)]
    position = 0
    while position < len(word):
        length = 2 if word[position : position + 2] in _DOUBLED else 1
        numbers.append(TOKENS.index(word[position : position + length]))
        position += length
    return tuple(numbers)


def encode(sentence: str) -> list[int]:
    """Letter case is not modelled."""
    return [number for word in sentence.lower().split() for number in _spell(word)]


def decode(numbers: list[int]) -> str:
    return "".join(TOKENS[number] for number in numbers).replace(WORD_START, " ").strip()


def write(folder: Path) -> None:
    numbered = "".join(f"{token} {number}\n" for number, token in enumerate(TOKENS))
    (folder / "tokens.txt").write_text(numbered, encoding="utf-8")
    scores = (_DOUBLED_SCORE if len(token) > 1 else -number for number, token in enumerate(TOKENS))
    vocabulary = "".join(f"{token}\t{score}\n" for token, score in zip(TOKENS, scores))
    (folder / "bpe.vocab").write_text(vocabulary, encoding="utf-8")
