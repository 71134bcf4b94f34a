"""How many words a recogniser got wrong."""

from collections.abc import Sequence
from dataclasses import dataclass


def distance(reference: Sequence[str], hypothesis: Sequence[str]) -> int:
    """The fewest insertions, deletions and substitutions between the two."""
    costs = list(range(len(hypothesis) + 1))
    for row, expected in enumerate(reference, 1):
        diagonal, costs[0] = costs[0], row
        for column, found in enumerate(hypothesis, 1):
            cost = min(costs[column] + 1, costs[column - 1] + 1, diagonal + (expected != found))
            diagonal, costs[column] = costs[column], cost
    return costs[-1]


@dataclass
class WordErrors:
    """Counts over many sentences; letter case is ignored, except in `errors_with_case`."""

    errors: int = 0
    errors_with_case: int = 0
    words: int = 0
    correct_sentences: int = 0
    sentences: int = 0

    def add(self, reference: str, hypothesis: str) -> None:
        errors = distance(reference.lower().split(), hypothesis.lower().split())
        self.errors += errors
        self.errors_with_case += distance(reference.split(), hypothesis.split())
        self.words += len(reference.split())
        self.correct_sentences += errors == 0
        self.sentences += 1

    @property
    def rate(self) -> float:
        """The word error rate in percent."""
        return 100 * self.errors / self.words

    @property
    def rate_with_case(self) -> float:
        return 100 * self.errors_with_case / self.words
