"""Sentences of a guardian's dictation, drawn at random from the templates in `texts/grammar.txt`.

A template is a line with slots: "das Guthaben beträgt {sum} {stop}". What fills a slot is a method of
`Generator` of the same name; the choices in it are made by one seeded source, so that a seed and a count
always give the same sentences.
"""

import random
import re
from pathlib import Path

from . import numerals
from .words import MONTHS, WEEKDAYS, everyday, lines, phrases, subject_matter, words

GRAMMAR = Path(__file__).parent.parent / "texts" / "grammar.txt"
_SLOT = re.compile(r"\{(\w+)\}")
#: Whole sentences that may stand beside each other or before a mark.
_PLAIN_TOPICS = ("reports", "requests", "everyday")

Templates = dict[str, tuple[int, list[str]]]


def read_grammar(path: Path = GRAMMAR) -> Templates:
    """Topic -> its weight and its templates; a head line reads "[topic weight]"."""
    topics: Templates = {}
    for line in lines(path):
        if head := re.fullmatch(r"\[(\S+) (\d+)\]", line):
            topics[head[1]] = (int(head[2]), current := [])
        else:
            current.append(line)
    return topics


class Generator:
    """Fills templates. Every public method except `sentences` is a slot and returns dictated words."""

    def __init__(self, seed: int) -> None:
        self._random = random.Random(seed)
        topics = read_grammar()
        self._templates = [template for _, templates in topics.values() for template in templates]
        self._weights = [weight for weight, templates in topics.values() for _ in templates]
        self._plain = [template for topic in _PLAIN_TOPICS for template in topics[topic][1]]

    def sentences(self, count: int) -> list[str]:
        return [self._fill(template) for template in self._random.choices(self._templates, self._weights, k=count)]

    def _fill(self, template: str) -> str:
        filled = _SLOT.sub(lambda slot: getattr(self, slot[1])(), template)
        return " ".join(filled.split())

    def _one(self, category: str) -> str:
        return self._random.choice(words(category))

    def _chance(self, probability: float) -> bool:
        return self._random.random() < probability

    def _some(self, choices: tuple[str, ...], low: int, high: int) -> str:
        return " ".join(self._random.choices(choices, k=self._random.randint(low, high)))

    def _number(self, low: int, high: int) -> str:
        return " ".join(numerals.cardinal(self._random.randint(low, high)))

    # Marks, not always spoken

    def comma(self) -> str:
        return "Komma" if self._chance(0.75) else ""

    def colon(self) -> str:
        return "Doppelpunkt" if self._chance(0.8) else ""

    def stop(self) -> str:
        return "Punkt" if self._chance(0.6) else ""

    def question_mark(self) -> str:
        return "Fragezeichen" if self._chance(0.6) else ""

    def mark(self) -> str:
        return self._random.choice(phrases("marks") + phrases("layout-marks"))

    def layout(self) -> str:
        return self._random.choice(phrases("layout-marks"))

    # Numbers, dates, references

    def small_number(self) -> str:
        return numerals.UNITS[self._random.randint(1, 12)]

    def count(self) -> str:
        return self._number(2, 60)

    def number(self) -> str:
        return self._number(1, 999)

    def long_number(self) -> str:
        value = self._random.randint(1000, 9999)
        return " ".join(numerals.by_hundreds(value) if self._chance(0.3) else numerals.cardinal(value))

    def digits(self) -> str:
        return self._some(tuple(numerals.UNITS[:10]), 4, 9)

    def postal_code(self) -> str:
        return self._some(tuple(numerals.UNITS[:10]), 5, 5)

    def ordinal(self) -> str:
        return self._random.choice(("ersten", "zweiten", "dritten", "vierten", "letzten"))

    def date(self) -> str:
        day = numerals.ordinal(self._random.randint(1, 31))
        form = self._random.random()
        if form < 0.45:
            return f"{day} {self.month()}"
        if form < 0.6:
            return f"{day} {numerals.ordinal(self._random.randint(1, 12))}"
        recent, coming, past = (2015, 2029), (2020, 2027), (1930, 1999)
        year = self._random.randint(*self._random.choice((recent, coming, past)))
        return " ".join([day, self.month(), *numerals.by_hundreds(year)])

    def time(self) -> str:
        hour = self._random.randint(7, 19)
        minutes = self._random.choice(("fünfzehn", "dreißig", "fünfundvierzig", "zehn", "zwanzig"))
        return f"{numerals.below_hundred(hour)} Uhr" + (f" {minutes}" if self._chance(0.4) else "")

    def sum(self) -> str:
        euros = self._number(2, 9999 if self._chance(0.8) else 99999)
        return f"{euros} Euro" + (f" {self._number(2, 99)}" if self._chance(0.35) else "")

    def citation(self) -> str:
        guardianship, civil_code, shorter = (1800, 1890), (1, 2400), (1, 340)
        section = self._random.randint(*self._random.choice((guardianship, civil_code, shorter)))
        read = numerals.by_hundreds if self._chance(0.8) else numerals.cardinal
        parts = ["Paragraph", *read(section)]
        if self._chance(0.12):
            parts.append(self._random.choice("ABCD"))
        for name, highest, probability in (("Absatz", 9, 0.6), ("Satz", 4, 0.3), ("Nummer", 12, 0.15)):
            if self._chance(probability):
                parts += [name, self._number(1, highest)]
        if self._chance(0.8):
            parts.append(self._random.choice(phrases("law-codes")) if self._chance(0.75) else "B G B")
        return " ".join(parts)

    def file_number(self) -> str:
        register = self._some(words("letters")[:26], 1, 3)
        year = self._number(10, 29)
        return f"Aktenzeichen {self._number(1, 99)} {register} {self._number(1, 999)} Schrägstrich {year}"

    def letter(self) -> str:
        return self._one("letters")

    def spelling(self) -> str:
        return self._some(words("letters"), 2, 6)

    # Time

    def month(self) -> str:
        return self._random.choice(MONTHS)

    def weekday(self) -> str:
        return self._random.choice(WEEKDAYS)

    def moment(self) -> str:
        plain = "heute gestern morgen bisher inzwischen zurzeit derzeit kurzfristig umgehend".split()
        return self._random.choice((
            *plain, "in der nächsten Woche", "im letzten Jahr", "seit längerer Zeit",
            f"seit {self._number(2, 12)} Wochen", f"seit {self._number(2, 20)} Monaten",
            f"am {self.date()}", f"am {self.weekday()}", f"im {self.month()}", f"bis zum {self.date()}",
        ))

    # People and bodies

    def name(self) -> str:
        return self._one("family-names")

    def person(self) -> str:
        first_name = self._one("first-names") + " " if self._chance(0.15) else ""
        return f"{self._random.choice(('Frau', 'Herr'))} {first_name}{self.name()}"

    def client(self) -> str:
        roles = ("der Betreute", "die Betreute", "die Betroffene", "der Betroffene", "die Klientin", "der Klient")
        return self.person() if self._chance(0.3) else self._random.choice(roles)

    def client_accusative(self) -> str:
        roles = ("den Betreuten", "die Betreute", "die Betroffene", "den Betroffenen", "meine Klientin")
        return self.person() if self._chance(0.3) else self._random.choice(roles)

    def _office(self, masculine: str, feminine: str, neuter: str) -> str:
        kind = self._random.choices(("masculine", "feminine", "neuter"), (35, 35, 30))[0]
        article = {"masculine": masculine, "feminine": feminine, "neuter": neuter}[kind]
        return f"{article} {self._one(f'offices-{kind}')}"

    def office(self) -> str:
        return self._office("der", "die", "das")

    def office_accusative(self) -> str:
        return self._office("den", "die", "das")

    def office_dative(self) -> str:
        return self._office("dem", "der", "dem")

    def from_office(self) -> str:
        return self._office("vom", "von der", "vom")

    def at_office(self) -> str:
        return self._office("beim", "bei der", "beim")

    def to_office(self) -> str:
        return self._office("zum", "zur", "zum")

    def town(self) -> str:
        return self._one("towns")

    def street(self) -> str:
        return self._one("streets")

    def duty(self) -> str:
        return self._one("duties")

    def court(self) -> str:
        return self._random.choice("Amtsgericht Betreuungsgericht Landgericht Pflegeheim Krankenhaus Rathaus".split())

    def body_part(self) -> str:
        return self._one("body-parts")

    # Things, and what is done with them

    def _thing(self, masculine: str, feminine: str, neuter: str) -> str:
        kind = self._random.choices(("masculine", "feminine", "neuter"), (35, 40, 25))[0]
        article = {"masculine": masculine, "feminine": feminine, "neuter": neuter}[kind]
        return f"{article} {self._one(f'things-{kind}')}"

    def thing(self) -> str:
        if self._chance(0.1):
            return f"die {self._one('attributes')} {self._one('things-feminine')}"
        return self._thing("der", "die", "das")

    def thing_accusative(self) -> str:
        form = self._random.random()
        if form < 0.2:
            return self.things()
        if form < 0.3:
            return f"den {self._one('attributes')}n {self._one('things-masculine')}"
        if form < 0.4:
            return f"die {self._one('attributes')} {self._one('things-feminine')}"
        return self._thing("den", "die", "das")

    def thing_dative(self) -> str:
        return self._thing("dem", "der", "dem")

    def a_thing(self) -> str:
        return self._thing("einen", "eine", "ein")

    def things(self) -> str:
        attribute = self._one("attributes") + "n " if self._chance(0.15) else ""
        return f"die {attribute}{self._one('things-plural')}"

    def must(self) -> str:
        return self._random.choice("muss kann soll möchte will sollte wird darf".split())

    def i_will(self) -> str:
        return self._random.choice("werde muss kann möchte will soll".split())

    def do(self) -> str:
        return self._one("infinitives")

    def to_do(self) -> str:
        return self._one("joined-infinitives") if self._chance(0.5) else "zu " + self._random.choice(
            "prüfen klären beantragen unterschreiben bezahlen bestätigen genehmigen veranlassen besprechen".split())

    def done(self) -> str:
        return self._one("participles")

    def quality(self) -> str:
        return self._one("adjectives")

    # Everyday speech

    def anyone(self) -> str:
        pronouns = ("er", "sie", "er", "sie", "es", "man", "jemand", "niemand")
        family = ("mein Vater", "meine Mutter", "der Sohn", "die Tochter", "der Nachbar", "die Pflegerin",
                  "das Kind", "der Mann", "die Frau", "der Arzt", "unser Kollege", "meine Kollegin")
        return self._random.choice((*pronouns, *family, self.person()))

    def word(self) -> str:
        return self._random.choice(everyday())

    def everyday_words(self) -> str:
        return self._some(everyday(), 3, 7)

    def all_words(self) -> str:
        return self._some(everyday() + subject_matter(), 4, 8)

    def name_words(self) -> str:
        every_name = [word for category in ("family-names", "first-names", "towns", "streets", "duties")
                      for word in words(category)]
        return self._some(tuple(every_name), 2, 4)

    def sentence(self) -> str:
        return self._fill(self._random.choice(self._plain))


def vocabulary(sentences: list[str]) -> set[str]:
    return {word for sentence in sentences for word in sentence.split()}
