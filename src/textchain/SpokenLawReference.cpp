#include "textchain/SpokenLawReference.h"

#include "foundation/Characters.h"
#include "foundation/Graphemes.h"
#include "foundation/Requirement.h"
#include "foundation/Trimming.h"
#include "foundation/WordSet.h"
#include "foundation/Words.h"
#include "state/DiagnosticsLog.h"
#include "textchain/GermanNumberWords.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

namespace querlin {

std::string LawReference::formatted() const {
    auto text = "§ " + sectionID;
    if (absatz) text += " Abs. " + *absatz;
    if (satz) text += " Satz " + *satz;
    if (nummer) text += " Nr. " + *nummer;
    if (law) text += " " + *law;
    return text;
}

namespace SpokenLawReference {

namespace {

using Tokenizer::Token;
using Tokens = std::span<const Token>;

constexpr WordSet<5> paragraphMarkers({"paragraph", "paragraf", "paragraphen", "parapgraph", "§"});
constexpr WordSet<3> absatzMarkers({"absatz", "abs", "abs."});
constexpr WordSet<1> satzMarkers({"satz"});
constexpr WordSet<4> nummerMarkers({"nummer", "nr", "nr.", "ziffer"});

/// Both are number words and, far more often, the article.
constexpr WordSet<2> articles({"ein", "eine"});

struct Alias {
    std::string_view spoken;
    std::string_view law;
};

constexpr auto lawAliases = std::to_array<Alias>({
    {"bgb", "BGB"},
    {"b g b", "BGB"},
    {"bürgerliches gesetzbuch", "BGB"},
    {"buergerliches gesetzbuch", "BGB"},
    {"famfg", "FamFG"},
    {"fam f g", "FamFG"},
    {"fam fg", "FamFG"},
    {"familienverfahrensgesetz", "FamFG"},
    {"btog", "BtOG"},
    {"b t o g", "BtOG"},
    {"bt o g", "BtOG"},
    {"betreuungsorganisationsgesetz", "BtOG"},
    {"vbvg", "VBVG"},
    {"v b v g", "VBVG"},
    {"vormünder- und betreuervergütungsgesetz", "VBVG"},
    {"betreuervergütungsgesetz", "VBVG"},
    {"wbvg", "WBVG"},
    {"w b v g", "WBVG"},
    {"wohn- und betreuungsvertragsgesetz", "WBVG"},
    {"wohn und betreuungsvertragsgesetz", "WBVG"},
    {"zpo", "ZPO"},
    {"z p o", "ZPO"},
    {"zivilprozessordnung", "ZPO"},
    {"zivilprozeßordnung", "ZPO"},
    {"inso", "InsO"},
    {"insolvenzordnung", "InsO"},
    {"sgg", "SGG"},
    {"s g g", "SGG"},
    {"sozialgerichtsgesetz", "SGG"},
    {"vwvfg", "VwVfG"},
    {"vw v f g", "VwVfG"},
    {"verwaltungsverfahrensgesetz", "VwVfG"},
    {"wogg", "WoGG"},
    {"wo g g", "WoGG"},
    {"wohngeldgesetz", "WoGG"},
    {"rbeg", "RBEG"},
    {"r b e g", "RBEG"},
    {"regelbedarfsermittlungsgesetz", "RBEG"},
    {"abgabenordnung", "AO"},
    {"a o", "AO"},
    {"stgb", "StGB"},
    {"s t g b", "StGB"},
    {"strafgesetzbuch", "StGB"},
});
constexpr std::size_t longestAliasInWords = 4;

constexpr auto sgb = std::to_array<std::string_view>({"sgb"});
constexpr auto sgbSpelt = std::to_array<std::string_view>({"s", "g", "b"});
constexpr auto sozialgesetzbuch = std::to_array<std::string_view>({"sozialgesetzbuch"});
constexpr std::array<std::span<const std::string_view>, 3> sgbPrefixes = {sgb, sgbSpelt, sozialgesetzbuch};

struct Book {
    std::string_view numeral;
    /// Empty if the book has no fifth form.
    std::array<std::string_view, 5> spoken;
};

/// There is no thirteenth book.
constexpr auto sgbBooks = std::to_array<Book>({
    {"I", {"i", "1", "eins", "erstes"}},
    {"II", {"ii", "2", "zwei", "zweites"}},
    {"III", {"iii", "3", "drei", "drittes"}},
    {"IV", {"iv", "4", "vier", "viertes"}},
    {"V", {"v", "5", "fünf", "fuenf", "fünftes"}},
    {"VI", {"vi", "6", "sechs", "sechstes"}},
    {"VII", {"vii", "7", "sieben", "siebtes"}},
    {"VIII", {"viii", "8", "acht", "achtes"}},
    {"IX", {"ix", "9", "neun", "neuntes"}},
    {"X", {"x", "10", "zehn", "zehntes"}},
    {"XI", {"xi", "11", "elf", "elftes"}},
    {"XII", {"xii", "12", "zwölf", "zwoelf", "zwölftes"}},
    {"XIV", {"xiv", "14", "vierzehn", "vierzehntes"}},
});

bool isMadeOfNumbers(std::string_view word) {
    return !word.empty() && std::ranges::all_of(Graphemes(word), [](std::string_view character) {
        return isNumeric(character);
    });
}

bool isOneLetter(std::string_view word) {
    return isAlphabetic(word) && Graphemes::firstLength(word) == word.size();
}

/// Something read from the tokens, and the index of the next token.
struct Read {
    std::string value;
    std::size_t end = 0;
};

/// The Roman numeral of a book of the social code, if any.
std::string_view bookSpoken(std::string_view word) {
    const auto* found = std::ranges::find_if(
        sgbBooks, [word](const Book& book) { return std::ranges::count(book.spoken, word) > 0; });
    return found == sgbBooks.end() || word.empty() ? std::string_view() : found->numeral;
}

/// Reads the tokens of one citation from left to right.
class Reader {
public:
    explicit Reader(Tokens tokens) : tokens_(tokens) {}

    bool isAtEnd(std::size_t index) const { return index >= tokens_.size(); }
    /// The compared form of a token; empty after the last one.
    std::string_view word(std::size_t index) const {
        return isAtEnd(index) ? std::string_view() : tokens_[index].normalized;
    }

    std::optional<Read> number(std::size_t index) const {
        if (isMadeOfNumbers(word(index))) return Read{std::string(word(index)), index + 1};
        const auto value = GermanNumberWords::parseWord(word(index));
        if (!value) return std::nullopt;
        auto end = index + 1;
        while (continuesNumber(end)) ++end;
        if (end > index + 1) return Read{digits(index, end), end};
        if (articles.contains(word(index)) && !continuesCitation(end)) return std::nullopt;
        return Read{std::to_string(*value), end};
    }

    std::optional<Read> law(std::size_t index) const {
        if (const auto prefixEnd = sgbPrefixEnd(index)) {
            const auto numeral = bookSpoken(word(*prefixEnd));
            if (!numeral.empty()) return Read{fmt::format("SGB {}", numeral), *prefixEnd + 1};
        }
        const auto most = std::min(longestAliasInWords, tokens_.size() - std::min(index, tokens_.size()));
        for (auto length = most; length > 0; --length) {
            const auto spoken = joined(index, length);
            const auto* found = std::ranges::find(lawAliases, spoken, &Alias::spoken);
            if (found != lawAliases.end()) return Read{std::string(found->law), index + length};
        }
        return std::nullopt;
    }

    /// The token after "SGB", which must exist.
    std::optional<std::size_t> sgbPrefixEnd(std::size_t index) const {
        for (const auto prefix : sgbPrefixes) {
            auto end = index;
            for (const auto part : prefix) {
                if (word(end) != part) break;
                ++end;
            }
            if (end - index == prefix.size() && !isAtEnd(end)) return end;
        }
        return std::nullopt;
    }

    /// "1814 a": a letter that belongs to the section, unless it begins a law or a spelt word ("S G B").
    bool isSectionLetter(std::size_t index) const {
        return isOneLetter(word(index)) && !law(index) && (!isOneLetter(word(index + 1)) || law(index + 1));
    }

private:
    /// A number doesn't continue after a mark or with an article: "füge Paragraph zwölf ein", "nach Paragraph
    /// fünf. Zwei".
    bool continuesNumber(std::size_t index) const {
        return Tokenizer::trailingPunctuation(tokens_[index - 1].raw).empty() &&
               !articles.contains(word(index)) && GermanNumberWords::isNumberWord(word(index));
    }

    bool continuesCitation(std::size_t index) const {
        const auto next = word(index);
        return absatzMarkers.contains(next) || satzMarkers.contains(next) || nummerMarkers.contains(next) ||
               law(index);
    }

    /// Words that are one number when written together are that number: "achtzehn hundert vierzehn" -> 1814.
    std::string digits(std::size_t index, std::size_t end) const {
        std::vector<std::string_view> words;
        for (; index < end; ++index) words.push_back(word(index));
        const auto together = GermanNumberWords::parseWord(fmt::format("{}", fmt::join(words, "")));
        return together ? std::to_string(*together) : *GermanNumberWords::digits(words);
    }

    std::string joined(std::size_t index, std::size_t length) const {
        std::string text;
        for (auto at = index; at < index + length; ++at) text.append(at > index ? " " : "").append(word(at));
        return text;
    }

    Tokens tokens_;
};

std::string_view leadingPunctuation(std::string_view raw) {
    const auto word = raw.substr(Tokenizer::leadingWhitespace(raw).size());
    const auto bare = trimAnyOf(word, wordPunctuation);
    return word.substr(0, static_cast<std::size_t>(bare.data() - word.data()));
}

} // namespace

bool isParagraphMarker(const Token& token) { return paragraphMarkers.contains(token.normalized); }

std::optional<ParsedReference> parseReference(Tokens tokens, std::size_t index, Marker marker) {
    const Reader reader(tokens);
    ParsedReference parsed;
    auto& reference = parsed.reference;
    parsed.hadMarker = !reader.isAtEnd(index) && isParagraphMarker(tokens[index]);
    if (!parsed.hadMarker && marker == Marker::required) return std::nullopt;
    if (parsed.hadMarker) ++index;

    const auto section = reader.number(index);
    if (!section) return std::nullopt;
    reference.sectionID = section->value;
    index = section->end;
    if (reader.isSectionLetter(index)) reference.sectionID += reader.word(index++);

    // In any order; of two of a kind the last one counts.
    const auto readUnit = [&](const auto& markers, std::optional<std::string>& unit) {
        if (!markers.contains(reader.word(index))) return false;
        const auto number = reader.number(index + 1);
        if (!number) return false;
        unit = number->value;
        index = number->end;
        return true;
    };
    while (readUnit(absatzMarkers, reference.absatz) || readUnit(satzMarkers, reference.satz) ||
           readUnit(nummerMarkers, reference.nummer)) {
    }

    if (const auto law = reader.law(index)) {
        reference.law = law->value;
        index = law->end;
    } else if (reader.sgbPrefixEnd(index)) {
        DiagnosticsLog::trace("gesetz", "SGB ohne erkennbare Buchangabe – nicht zugeordnet.");
    }
    parsed.endIndex = index;
    return parsed;
}

std::string replacement(const Token& first, std::string_view text, const Token& last) {
    return fmt::format("{}{}{}{}", Tokenizer::leadingWhitespace(first.raw), leadingPunctuation(first.raw),
                       text, Tokenizer::trailingPunctuation(last.raw));
}

std::string normalizeReferences(std::string_view text) {
    constexpr auto marker = Requirement::oneOf("paragra|parapgraph|§");
    if (!marker.isMetBy(text)) return std::string(text);
    return Tokenizer::replacing(
        text, [](Tokens tokens, std::size_t at) -> std::optional<Tokenizer::Replacement> {
            const auto parsed =
                isParagraphMarker(tokens[at]) ? parseReference(tokens, at, Marker::required) : std::nullopt;
            if (!parsed) return std::nullopt;
            const auto& last = tokens[parsed->endIndex - 1];
            return Tokenizer::Replacement{replacement(tokens[at], parsed->reference.formatted(), last),
                                          parsed->endIndex};
        });
}

} // namespace SpokenLawReference

} // namespace querlin
