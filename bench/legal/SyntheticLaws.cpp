#include "SyntheticLaws.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <random>
#include <span>
#include <string_view>
#include <unordered_set>

#include <fmt/format.h>

namespace querlin::bench {

namespace {

/// The words of every sentence, roughly the most frequent first.
constexpr auto smallWords = std::to_array<std::string_view>(
    {"der",       "die",     "und",    "des",    "oder",  "den",     "in",        "das",      "von",
     "zu",        "nach",    "für",    "ist",    "nicht", "mit",     "dem",       "im",       "auf",
     "eine",      "durch",   "wenn",   "einer",  "so",    "zur",     "kann",      "an",       "werden",
     "ein",       "er",      "bei",    "die",    "es",    "als",     "über",      "wird",     "sind",
     "eines",     "dies",    "zum",    "sich",   "nur",   "bis",     "auch",      "aus",      "dass",
     "um",        "vor",     "sie",    "ihm",    "hat",   "unter",   "einem",     "einen",    "soweit",
     "gilt",      "diese",   "dieser", "alle",   "gegen", "sein",    "soll",      "haben",    "muss",
     "innerhalb", "ob",      "ohne",   "dieses", "hier",  "seiner",  "dabei",     "wer",      "wie",
     "jeder",     "während", "sofern", "beim",   "vom",   "am",      "seine",     "können",   "müssen",
     "dürfen",    "darf",    "worden", "keine",  "kein",  "ihre",    "ihrer",     "deren",    "dessen",
     "gemäß",     "mehrere", "statt",  "sowie",  "wegen", "anderen", "gegenüber", "zwischen", "dafür",
     "außer"});

constexpr auto prefixes = std::to_array<std::string_view>(
    {"be", "be",  "ge",  "ge",  "ge",  "ver",  "ver", "er",   "ent",   "zer", "auf", "ab",
     "an", "ein", "ein", "aus", "vor", "nach", "um",  "über", "unter", "zu",  "mit", "hin"});
constexpr auto roots = std::to_array<std::string_view>(
    {"rel",    "mend",  "sicht", "trand", "hald", "stell", "recht",  "gelt", "wesd",  "stimm",   "ordn",
     "nehm",   "ling",  "beit",  "wirt",  "führ", "prüf",  "schetz", "förd", "klag",  "löhn",    "mein",
     "pfleg",  "rent",  "lass",  "dien",  "wohn", "kind",  "werk",   "hilf", "zahl",  "steu",    "leist",
     "haft",   "frist", "setz",  "teil",  "land", "bind",  "amt",    "nenn", "greif", "schrift", "ten",
     "heim",   "serg",  "trag",  "mess",  "tell", "brin",  "kauf",   "git",  "netz",  "schild",  "fall",
     "last",   "erb",   "eign",  "grund", "sach", "lein",  "dert",   "mier", "folg",  "schnitt", "stand",
     "glied",  "wend",  "hir",   "ruf",   "reng", "samm",  "kost",   "tret", "zieh",  "eiß",     "bies",
     "streif", "melt",  "bart",  "firn",  "gei",  "tern",  "gericht"});
constexpr auto endings = std::to_array<std::string_view>(
    {"en",    "en",     "en",  "er",   "er",    "e",      "e",      "es",  "ung", "ung",
     "ungen", "te",     "ten", "lich", "liche", "lichen", "licher", "ig",  "ige", "igen",
     "keit",  "schaft", "nis", "bar",  "ern",   "et",     "t",      "t",   "s",   "",
     "",      "heit",   "los", "end",  "ende",  "enden",  "mäßig",  "ern", "ers"});
constexpr auto months =
    std::to_array<std::string_view>({"Januar", "Februar", "März", "April", "Mai", "Juni", "Juli", "August",
                                     "September", "Oktober", "November", "Dezember"});

constexpr std::size_t wordCount = 34'000;
constexpr std::size_t phraseCount = 5'000;
constexpr std::size_t lawCount = 26;

/// The same numbers on every machine; the library's distributions don't promise that.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : engine_(seed) {}

    std::size_t below(std::size_t count) { return engine_() % count; }
    std::size_t between(std::size_t least, std::size_t most) { return least + below(most - least + 1); }
    bool isChance(unsigned percent) { return below(100) < percent; }
    double part() { return static_cast<double>(engine_() >> 11U) * 0x1p-53; }
    /// Around 0, with a deviation of about 1.
    double bell() {
        double sum = -6;
        for (int i = 0; i < 12; ++i) sum += part();
        return sum;
    }
    template<class Items>
    const auto& oneOf(const Items& items) {
        return items[below(std::size(items))];
    }

private:
    std::mt19937_64 engine_;
};

/// Draws ranks: the rank n about 1/n as often as the first.
class Zipf {
public:
    Zipf(std::size_t ranks, double flatness, double exponent) {
        double sum = 0;
        for (std::size_t rank = 0; rank < ranks; ++rank)
            sums_.push_back(sum += std::pow(static_cast<double>(rank) + flatness, -exponent));
    }
    std::size_t draw(Dice& dice) const {
        const auto found = std::ranges::upper_bound(sums_, dice.part() * sums_.back());
        return std::min(sums_.size() - 1, static_cast<std::size_t>(found - sums_.begin()));
    }

private:
    std::vector<double> sums_;
};

std::string capitalized(std::string word) {
    if (word.starts_with("ü")) return "Ü" + word.substr(2);
    if (word.starts_with("ä")) return "Ä" + word.substr(2);
    if (word.front() >= 'a' && word.front() <= 'z') word.front() = static_cast<char>(word.front() - 0x20);
    return word;
}

/// The words of all laws, the most frequent first, and the longer the rarer.
std::vector<std::string> inventedWords(Dice& dice) {
    std::vector<std::string> words(smallWords.begin(), smallWords.end());
    std::unordered_set<std::string> known(words.begin(), words.end());
    const auto stem = [&dice] {
        return fmt::format("{}{}", dice.isChance(40) ? dice.oneOf(prefixes) : "", dice.oneOf(roots));
    };
    while (words.size() < wordCount) {
        // Nouns grow together, the rarer the more.
        const auto parts = words.size() < 1'500 ? 0U : dice.isChance(12) ? 2U : dice.isChance(70) ? 1U : 0U;
        std::string word;
        for (std::size_t i = 0; i < parts; ++i) word += stem() + (dice.isChance(30) ? "s" : "");
        word += stem().append(dice.oneOf(endings));
        const bool isNoun = words.size() > 200 ? dice.isChance(55) : dice.isChance(30);
        if (known.insert(word).second) words.push_back(isNoun ? capitalized(word) : word);
    }
    return words;
}

/// Writes sentences.
class Writer {
public:
    explicit Writer(Dice& dice) : dice_(dice), words_(inventedWords(dice)) {
        for (std::size_t i = 0; i < phraseCount; ++i) {
            std::string phrase;
            for (auto left = dice.between(3, 9); left > 0; --left)
                phrase.append(phrase.empty() ? "" : " ").append(word());
            phrases_.push_back(std::move(phrase));
        }
    }

    const std::string& word() { return words_[wordRanks_.draw(dice_)]; }
    std::string noun() {
        const auto first = smallWords.size();
        return capitalized(
            words_[first + (wordRanks_.draw(dice_) * 7 + dice_.below(5)) % (words_.size() - first)]);
    }

    std::string title() {
        std::string text = noun();
        for (auto left = dice_.below(4); left > 0; --left)
            text.append(left == 2 ? ", " : " ")
                .append(dice_.isChance(50) ? noun() : std::string(dice_.oneOf(smallWords)));
        return text;
    }

    std::string sentence() {
        std::string text;
        for (auto left = dice_.between(3, 9); left > 0; --left) {
            text += text.empty() ? "" : dice_.isChance(22) ? ", " : " ";
            text += part();
        }
        return capitalized(std::move(text)) + ".";
    }

private:
    std::string part() {
        const auto kind = dice_.below(100);
        if (kind < 66) return phrase();
        if (kind < 84) return fmt::format("{} {} {}", word(), word(), word());
        if (kind < 91)
            return fmt::format("§ {} Absatz {} Satz {}", dice_.between(1, 1900), dice_.between(1, 6),
                               dice_.between(1, 4));
        if (kind < 93)
            return fmt::format("nach den §§ {} bis {}", dice_.between(1, 900), dice_.between(901, 1900));
        if (kind < 95)
            return fmt::format("vom {}. {} {}", dice_.between(1, 28), dice_.oneOf(months),
                               dice_.between(1961, 2025));
        if (kind < 97) return fmt::format("„{} {}“", noun(), word());
        if (kind < 98) return fmt::format("– {} –", phrase());
        return fmt::format("{} Euro", dice_.between(1, 250'000));
    }

    /// One phrase out of three has been used not long ago: a law keeps to its words.
    const std::string& phrase() {
        const bool isOld = dice_.isChance(33);
        const auto place = isOld ? dice_.below(recent_.size()) : ++newest_ % recent_.size();
        if (!isOld) recent_[place] = phraseRanks_.draw(dice_);
        return phrases_[recent_[place]];
    }

    Dice& dice_;
    std::vector<std::string> words_;
    std::vector<std::string> phrases_;
    std::array<std::size_t, 60> recent_{};
    std::size_t newest_ = 0;
    Zipf wordRanks_{wordCount, 2.2, 1.03};
    Zipf phraseRanks_{phraseCount, 12, 1.0};
};

/// Writes one law as the portal does.
class LawWriter {
public:
    LawWriter(Dice& dice, Writer& writer, std::string abbr) :
        dice_(dice), writer_(writer), abbr_(std::move(abbr)) {}

    std::string law(std::size_t sections) {
        text_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<dokumente builddate=\"20250102030405\" "
                "doknr=\"X1\">";
        beginNorm();
        text_ += fmt::format(
            "<ausfertigung-datum manuell=\"ja\">1990-01-02</ausfertigung-datum><langue>{} {}</langue>"
            "<standangabe checked=\"ja\"><standtyp>Stand</standtyp><standkommentar>{}</standkommentar>"
            "</standangabe></metadaten><textdaten><fussnoten><Content><P>{}</P></Content></fussnoten>"
            "</textdaten></norm>\n",
            writer_.noun(), writer_.title(), writer_.title(), writer_.sentence());
        for (std::size_t i = 0; i < sections; ++i) {
            if (i % 9 == 0) heading(i / 9);
            section(fmt::format("{}{}", i + 1, dice_.isChance(6) ? "a" : ""));
        }
        return std::move(text_) + "</dokumente>\n";
    }

private:
    void beginNorm() {
        text_ += fmt::format("<norm builddate=\"20250102030405\" doknr=\"X1\"><metadaten><jurabk>{}</jurabk>",
                             abbr_);
    }

    void heading(std::size_t number) {
        constexpr auto names = std::to_array<std::string_view>({"Buch", "Abschnitt", "Titel"});
        const auto level = number % 12 == 0 ? 0U : number % 4 == 0 ? 1U : 2U;
        std::string code = fmt::format("{:03}", number / 12 + 1);
        if (level > 0) code += fmt::format("{:03}", number / 4 % 3 + 1);
        if (level > 1) code += fmt::format("{:03}", number % 4);
        beginNorm();
        text_ += fmt::format(
            "<gliederungseinheit><gliederungskennzahl>{}</gliederungskennzahl><gliederungsbez>{} {}"
            "</gliederungsbez><gliederungstitel>{}</gliederungstitel></gliederungseinheit></metadaten>"
            "<textdaten><fussnoten/></textdaten></norm>\n",
            code, names.at(level), number + 1, writer_.title());
    }

    void section(std::string_view id) {
        beginNorm();
        text_ += fmt::format("<enbez>§ {}</enbez><titel format=\"parat\">{}</titel></metadaten><textdaten>"
                             "<text format=\"XML\"><Content>",
                             id, writer_.title());
        const auto wanted = std::clamp(std::exp(6.05 + 0.85 * dice_.bell()), 90.0, 30'000.0);
        const auto end = text_.size() + static_cast<std::size_t>(wanted);
        for (std::size_t number = 1; text_.size() < end; ++number) paragraph(number);
        text_ += "</Content></text><fussnoten/></textdaten></norm>\n";
    }

    void paragraph(std::size_t number) {
        text_ += fmt::format("<P>({}) ", number);
        for (auto left = dice_.between(1, 3); left > 0; --left) text_.append(writer_.sentence()).append(" ");
        if (dice_.isChance(22)) list();
        if (dice_.isChance(2)) table();
        text_ += "</P>";
    }

    void list() {
        text_ += "<DL Type=\"arabic\">";
        for (std::size_t i = 1, last = dice_.between(2, 6); i <= last; ++i)
            text_ += fmt::format(
                "<DT>{}.</DT><DD Font=\"normal\" Size=\"normal\"><LA Size=\"normal\">{}</LA></DD>", i,
                writer_.sentence());
        text_ += "</DL>";
    }

    void table() {
        text_ += "<table><tgroup cols=\"3\"><tbody valign=\"top\">";
        for (auto rows = dice_.between(3, 8); rows > 0; --rows)
            text_ += fmt::format("<row><entry colname=\"col1\">{}</entry><entry colname=\"col2\">{}</entry>"
                                 "<entry colname=\"col3\">{},{:02}</entry></row>",
                                 rows, writer_.title(), dice_.between(1, 999), dice_.below(100));
        text_ += "</tbody></tgroup></table>";
    }

    Dice& dice_;
    Writer& writer_;
    std::string abbr_;
    std::string text_;
};

} // namespace

std::vector<SyntheticLaw> syntheticLaws(std::size_t sections) {
    Dice dice(20'250'102);
    Writer writer(dice);
    double sum = 0;
    for (std::size_t rank = 1; rank <= lawCount; ++rank) sum += 1 / static_cast<double>(rank);
    std::vector<SyntheticLaw> laws;
    for (std::size_t rank = 1; rank <= lawCount; ++rank) {
        // The first is the greatest, the last have a few dozen sections each.
        const auto count =
            static_cast<std::size_t>(static_cast<double>(sections) / sum / static_cast<double>(rank));
        auto abbr = fmt::format("Q{}XG", static_cast<char>('A' + rank - 1));
        auto document = LawWriter(dice, writer, abbr).law(std::max<std::size_t>(count, 3));
        laws.push_back({std::move(abbr), std::move(document)});
    }
    return laws;
}

} // namespace querlin::bench
