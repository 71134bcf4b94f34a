"""The trigram language model: Witten-Bell smoothing, interpolated, written as ARPA and in binary form."""

import math
import subprocess
from collections import Counter, defaultdict
from pathlib import Path

Gram = tuple[str, ...]

_ORDERS = (1, 2, 3)
#: N-grams seen no more often than this are left to the lower order.
_CUTOFFS = {2: 0, 3: 1}
_FIRST, _LAST = "<s>", "</s>"
_LEAST_MASS = 1e-7
_LOG_ZERO = -99.0


def _count(sentences: list[str]) -> dict[int, Counter[Gram]]:
    counts: dict[int, Counter[Gram]] = {order: Counter() for order in _ORDERS}
    for sentence in sentences:
        words = (_FIRST, *sentence.split(), _LAST)
        for order in _ORDERS:
            counts[order].update(words[start : start + order] for start in range(len(words) - order + 1))
    del counts[1][_FIRST,]
    return counts


class Model:
    """Probabilities of the n-grams kept, and what is left for those that are not."""

    def __init__(self, sentences: list[str]) -> None:
        counts = _count(sentences)
        words, tokens = len(counts[1]), counts[1].total()
        self.probability = {gram: (count + 1) / (tokens + words) for gram, count in counts[1].items()}
        self.backoff: dict[Gram, float] = {}
        for order in _ORDERS[1:]:
            self._add_order(counts[order], _CUTOFFS[order])

    def _add_order(self, counts: Counter[Gram], cutoff: int) -> None:
        """Witten-Bell: a history followed by many different words leaves more to the lower order."""
        tokens: Counter[Gram] = Counter()
        followers: Counter[Gram] = Counter()
        for gram, count in counts.items():
            tokens[gram[:-1]] += count
            followers[gram[:-1]] += 1
        kept, lower = defaultdict(float), defaultdict(float)
        added: dict[Gram, float] = {}
        for gram, count in counts.items():
            if count <= cutoff:
                continue
            history, fallback = gram[:-1], self._score(gram[1:])
            added[gram] = (count + followers[history] * fallback) / (tokens[history] + followers[history])
            kept[history] += added[gram]
            lower[history] += fallback
        self.probability |= added
        for history in kept:
            left, left_below = max(_LEAST_MASS, 1 - kept[history]), max(_LEAST_MASS, 1 - lower[history])
            self.backoff[history] = left / left_below

    def _score(self, gram: Gram) -> float:
        if gram in self.probability:
            return self.probability[gram]
        return self.backoff.get(gram[:-1], 1.0) * self._score(gram[1:])

    def write(self, arpa: Path) -> None:
        rows = self.probability | {(_FIRST,): 0.0}
        by_order = {order: sorted(gram for gram in rows if len(gram) == order) for order in _ORDERS}
        with arpa.open("w", encoding="utf-8") as file:
            file.write("\\data\\\n")
            file.writelines(f"ngram {order}={len(grams)}\n" for order, grams in by_order.items())
            for order, grams in by_order.items():
                file.write(f"\n\\{order}-grams:\n")
                for gram in grams:
                    backoff = f"\t{_log(self.backoff.get(gram, 1.0)):.4f}" if order < _ORDERS[-1] else ""
                    file.write(f"{_log(rows[gram]):.4f}\t{' '.join(gram)}{backoff}\n")
            file.write("\n\\end\\\n")


def _log(value: float) -> float:
    return max(_LOG_ZERO, math.log10(value)) if value > 0 else _LOG_ZERO


def build(sentences: list[str], arpa: Path, binary: Path) -> None:
    Model(sentences).write(arpa)
    subprocess.run(["sphinx_lm_convert", "-i", arpa, "-o", binary], check=True, capture_output=True)
