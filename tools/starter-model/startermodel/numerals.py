"""German number words as they are dictated: hundreds and thousands are words of their own."""

UNITS = (
    "null eins zwei drei vier fünf sechs sieben acht neun zehn elf zwölf dreizehn vierzehn fünfzehn"
    " sechzehn siebzehn achtzehn neunzehn"
).split()
TENS = ["", "", *"zwanzig dreißig vierzig fünfzig sechzig siebzig achtzig neunzig".split()]
IRREGULAR_ORDINALS = {1: "ersten", 3: "dritten", 7: "siebten", 8: "achten"}


def below_hundred(number: int) -> str:
    """57 -> "siebenundfünfzig"."""
    if number < 20:
        return UNITS[number]
    tens, unit = divmod(number, 10)
    if unit == 0:
        return TENS[tens]
    return ("ein" if unit == 1 else UNITS[unit]) + "und" + TENS[tens]


#: Every word that numbers are made of.
NUMBER_WORDS = frozenset(map(below_hundred, range(100))) | {"hundert", "tausend", "ein"}


def cardinal(number: int) -> list[str]:
    """1814 -> ["ein", "tausend", "acht", "hundert", "vierzehn"]; up to 999,999."""
    if number < 100:
        return [below_hundred(number)]
    words: list[str] = []
    for value, name in ((1000, "tausend"), (100, "hundert")):
        count, number = divmod(number, value)
        if count:
            words += (["ein"] if count == 1 else cardinal(count)) + [name]
    return words + ([below_hundred(number)] if number else [])


def by_hundreds(number: int) -> list[str]:
    """As years and long section numbers are read: 1814 -> ["achtzehn", "hundert", "vierzehn"]."""
    if not 1100 <= number < 2000:
        return cardinal(number)
    hundreds, rest = divmod(number, 100)
    return [below_hundred(hundreds), "hundert"] + ([below_hundred(rest)] if rest else [])


def ordinal(number: int) -> str:
    """The form of dates, "am dritten": 3 -> "dritten", 24 -> "vierundzwanzigsten"."""
    regular = below_hundred(number) + ("ten" if number < 20 else "sten")
    return IRREGULAR_ORDINALS.get(number, regular)
