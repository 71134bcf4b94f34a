"""The word lists of `words/`, and the inflected forms that are derived from them."""

import re
from functools import cache
from pathlib import Path

FOLDER = Path(__file__).parent.parent / "words"
MONTHS = "Januar Februar März April Mai Juni Juli August September Oktober November Dezember".split()
WEEKDAYS = "Montag Dienstag Mittwoch Donnerstag Freitag Samstag Sonntag".split()

#: Stems after which "-et" is spoken: "arbeitet", "öffnet", "rechnet".
_NEEDS_E = re.compile(r"([td]|([^aeiouäöülrhmn]|ch)[mn])$")
#: Unstressed endings whose infinitive takes a bare "-n": "ändern", "wechseln".
_SHORT_INFINITIVE = re.compile(r"([^i]el|er)$")
#: Verbs without "ge-" in the participle.
_WITHOUT_GE = re.compile(r"^(be|er|ver|zer|ent|emp|ge|über|unter|wieder)|ier$")


def lines(path: Path) -> list[str]:
    """The lines of a text file without its comments and empty lines."""
    text = path.read_text(encoding="utf-8").splitlines()
    return [line.strip() for line in text if line.strip() and not line.startswith("#")]


@cache
def words(category: str) -> tuple[str, ...]:
    """The words of a list, "towns" -> ("Berlin", …)."""
    return tuple(word for line in lines(FOLDER / f"{category}.txt") for word in line.split())


@cache
def phrases(category: str) -> tuple[str, ...]:
    """The same for lists whose entries are whole lines, "law-codes" -> ("B G B", …)."""
    return tuple(lines(FOLDER / f"{category}.txt"))


def verb_forms(stem: str) -> list[str]:
    """"prüf" -> prüfen, prüft, prüfte, prüften, prüfe, geprüft."""
    is_short = _SHORT_INFINITIVE.search(stem) is not None
    third_person = stem + ("et" if _NEEDS_E.search(stem) else "t")
    forms = [stem + ("n" if is_short else "en"), third_person, third_person + "e", third_person + "en"]
    if not is_short:
        forms.append(stem + "e")
    if not _WITHOUT_GE.search(stem):
        forms.append("ge" + third_person)
    return forms


def adjective_forms(stem: str) -> list[str]:
    return [stem + ending for ending in ("e", "en", "er", "es", "em")]


@cache
def everyday() -> tuple[str, ...]:
    """All everyday words with their forms, each once."""
    found = [*words("general"), *words("plurals")]
    found += [form for stem in words("verb-stems") for form in verb_forms(stem)]
    found += [form for stem in words("adjective-stems") for form in adjective_forms(stem)]
    return tuple(dict.fromkeys(found))


@cache
def subject_matter() -> tuple[str, ...]:
    """The words of the office: things, bodies, what is done with them."""
    categories = (
        "things-masculine things-feminine things-neuter things-plural offices-masculine offices-feminine"
        " offices-neuter duties adjectives attributes infinitives participles joined-infinitives"
    ).split()
    return tuple(dict.fromkeys(word for category in categories for word in words(category)))
