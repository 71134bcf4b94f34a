#include "textchain/DictationCommands.h"

#include "foundation/Characters.h"
#include "foundation/Graphemes.h"
#include "foundation/Pattern.h"
#include "foundation/Trimming.h"
#include "foundation/WordSet.h"
#include "foundation/Words.h"
#include "textchain/Sentences.h"
#include "textchain/SpacingRules.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>

namespace querlin::DictationCommands {

namespace {

/// One to three words, in compared form.
using Phrase = std::array<std::string_view, 3>;

enum class Noun : std::uint8_t { never, possible };

struct Command {
    Phrase phrase;
    /// Empty for the quotation mark that alternates between opening and closing.
    std::string_view replacement;
    Noun noun;
};

/// The first matching row counts, so longer phrases come before their prefixes.
constexpr auto commands = std::to_array<Command>({
    {{"neuer", "absatz"}, "\n\n", Noun::never},
    {{"neuen", "absatz"}, "\n\n", Noun::never},
    {{"absatz", "ende"}, "\n\n", Noun::never},
    {{"neue", "zeile"}, "\n", Noun::never},
    {{"neuer", "zeile"}, "\n", Noun::never},
    {{"runde", "klammer", "auf"}, "(", Noun::never},
    {{"runde", "klammer", "zu"}, ")", Noun::never},
    {{"klammer", "auf"}, "(", Noun::never},
    {{"klammer", "zu"}, ")", Noun::never},
    {{"zitat", "anfang"}, "„", Noun::never},
    {{"zitat", "ende"}, "“", Noun::never},
    {{"anführungszeichen", "unten"}, "„", Noun::never},
    {{"anführungszeichen", "oben"}, "“", Noun::never},
    {{"anführungszeichen"}, "", Noun::possible},
    {{"fragezeichen"}, "?", Noun::possible},
    {{"ausrufezeichen"}, "!", Noun::possible},
    {{"ausrufungszeichen"}, "!", Noun::possible},
    {{"doppelpunkt"}, ":", Noun::possible},
    {{"semikolon"}, ";", Noun::possible},
    {{"strichpunkt"}, ";", Noun::possible},
    {{"gedankenstrich"}, " – ", Noun::possible},
    {{"bindestrich"}, "-", Noun::possible},
    {{"komma"}, ",", Noun::possible},
    {{"punkt"}, ".", Noun::possible},
});

constexpr auto deleteSentence = std::to_array<Phrase>({
    {"streiche", "das"},
    {"streich", "das"},
    {"das", "streichen"},
    {"letzten", "satz", "löschen"},
});

constexpr auto discardAll = std::to_array<Phrase>({
    {"alles", "verwerfen"},
    {"diktat", "verwerfen"},
    {"alles", "löschen"},
});

/// The first words of all phrases: no phrase begins at any other word.
constexpr auto firstWords = [] {
    std::array<std::string_view, commands.size() + deleteSentence.size() + discardAll.size()> words;
    auto* out = std::ranges::transform(commands, words.begin(), [](const auto& command) {
                    return command.phrase[0];
                }).out;
    const auto first = [](const Phrase& phrase) { return phrase[0]; };
    out = std::ranges::transform(deleteSentence, out, first).out;
    std::ranges::transform(discardAll, out, first);
    return WordSet(words);
}();

// clang-format off
/// After one of these an ambiguous command is a noun.
constexpr WordSet<91> determiners({
    "der", "die", "das", "den", "dem", "des", "ein", "eine", "einen", "einem", "einer", "eines", "dieser",
    "diese", "dieses", "diesen", "diesem", "jener", "jene", "jenes", "jeden", "jeder", "jede", "jedes",
    "kein", "keine", "keinen", "keinem", "keiner", "welcher", "welche", "welches", "mein", "meine",
    "meinen", "meinem", "meiner", "sein", "seine", "seinen", "seinem", "seiner", "ihr", "ihre", "ihren",
    "ihrem", "ihrer", "unser", "unsere", "unseren", "zum", "zur", "am", "im", "vom", "beim", "ans", "ins",
    "aufs", "mit", "ohne", "über", "unter", "zwischen", "gegen", "durch", "erster", "erste", "erstes",
    "zweiter", "zweite", "zweites", "dritter", "dritte", "drittes", "letzter", "letzte", "letztes",
    "wichtiger", "wichtige", "wichtiges", "strittiger", "strittige", "strittiges", "entscheidender",
    "entscheidende", "entscheidendes", "springender", "wunder", "obiger", "genannter",
});
// clang-format on

/// Before one of these an ambiguous command is a noun.
constexpr WordSet<33> followingVerbs({
    "ist",      "war",    "sind",   "waren", "wäre",   "wären", "wird",    "wurde",     "werden",
    "würde",    "worden", "bleibt", "blieb", "gilt",   "galt",  "scheint", "erscheint", "lautet",
    "betrifft", "steht",  "stand",  "muss",  "musste", "kann",  "konnte",  "soll",      "sollte",
    "darf",     "durfte", "hat",    "hatte", "haben",  "hätte",
});

const RuleList& proseTidying() {
    using namespace SpacingRules;
    static const RuleList rules(std::to_array<Rule>({
        gapBeforeMark,
        noGapBehindComma,
        noGapBehindSentence,
        {R"(\(\s+)", "(", Requirement::pair(ByteSet("("), Bytes::whitespaceBegins)},
        {R"((?<!\s)\s+\))", ")", Requirement::pair(Bytes::whitespaceEnds, ByteSet(")"))},
        {R"(„\s+)", "„", Requirement::pair(ByteSet("\x9E"), Bytes::whitespaceBegins)},
        {R"((?<!\s)\s+“)", "“", Requirement::pair(Bytes::whitespaceEnds, ByteSet("\xE2"))},
        repeatedBlanks,
        blanksBeforeNewline,
        blanksBehindNewline,
        severalEmptyLines,
    }));
    return rules;
}

const RuleList& compactTidying() {
    static const RuleList rules(std::to_array<Rule>({SpacingRules::repeatedBlanks}));
    return rules;
}

std::string tidied(std::string text, Mode mode) {
    if (mode == Mode::compact)
        return std::string(trimWhitespaceAndNewlines(compactTidying().apply(std::move(text))));
    return capitalizeSentences(trimWhitespaceAndNewlines(proseTidying().apply(std::move(text))));
}

std::size_t lengthOf(const Phrase& phrase) {
    return static_cast<std::size_t>(std::ranges::find_if(phrase, [](auto word) { return word.empty(); }) -
                                    phrase.begin());
}

/// The replacement of the white space between two words of the source; at most one empty line.
std::string_view lineBreaks(std::string_view gap) {
    const auto count = std::ranges::count(gap, '\n');
    return std::string_view("\n\n").substr(0, std::min<std::size_t>(2, static_cast<std::size_t>(count)));
}

bool isLetterOrNumber(std::string_view character) { return isAlphabetic(character) || isNumeric(character); }

void removeBlanksAtEnd(std::string& text) { text.resize(text.find_last_not_of(' ') + 1); }

/// The text so far, and the commands carried out.
class Dictation {
public:
    Dictation(std::string_view source, Mode mode) : words_(source), mode_(mode) {
        text_.reserve(source.size());
    }

    Outcome carryOut() {
        for (at_ = 0; at_ < words_.size();) {
            const bool mayBeginPhrase = firstWords.contains(words_.compared(at_));
            if (mayBeginPhrase && findPhrase(discardAll) != 0) {
                applied_.emplace_back("alles verwerfen");
                return {"", true, std::move(applied_)};
            }
            if (const auto length = mayBeginPhrase ? findPhrase(deleteSentence) : 0) {
                cutLastSentence();
                applied_.emplace_back("streiche das");
                at_ += length;
            } else if (const auto* command = mayBeginPhrase ? findCommand() : nullptr) {
                write(*command);
                at_ += lengthOf(command->phrase);
            } else {
                writeWord();
                ++at_;
            }
        }
        return {tidied(std::move(text_), mode_), false, std::move(applied_)};
    }

private:
    bool isSpokenHere(const Phrase& phrase) const {
        for (std::size_t i = 0; i < phrase.size() && !phrase[i].empty(); ++i) {
            if (words_.compared(at_ + i) != phrase[i]) return false;
        }
        return true;
    }

    /// The length of the first phrase that matches here; 0 if none does.
    std::size_t findPhrase(std::span<const Phrase> phrases) const {
        const auto found =
            std::ranges::find_if(phrases, [this](const auto& phrase) { return isSpokenHere(phrase); });
        return found == phrases.end() ? 0 : lengthOf(*found);
    }

    const Command* findCommand() const {
        const auto* found = std::ranges::find_if(
            commands, [this](const auto& command) { return isSpokenHere(command.phrase); });
        if (found == commands.end() || (found->noun == Noun::possible && isNoun(lengthOf(found->phrase))))
            return nullptr;
        return found;
    }

    bool isNoun(std::size_t length) const {
        const auto next = at_ + length;
        const bool standsBehindDeterminer = at_ > 0 && determiners.contains(words_.compared(at_ - 1));
        return standsBehindDeterminer || followingVerbs.contains(words_.compared(next));
    }

    void write(const Command& command) {
        auto replacement = command.replacement;
        if (replacement.empty()) {
            replacement = quoteIsOpen_ ? "“" : "„";
            quoteIsOpen_ = !quoteIsOpen_;
        }
        const bool opens = replacement == "(" || replacement == "„";
        if (mode_ == Mode::prose && opens && wantsBlankBeforeOpening()) text_ += ' ';
        if (replacement.front() == '\n') removeBlanksAtEnd(text_);
        text_ += replacement;

        std::string name;
        for (const auto word : std::span(command.phrase).first(lengthOf(command.phrase))) {
            name.append(name.empty() ? "" : " ").append(word);
        }
        applied_.push_back(std::move(name));
    }

    void writeWord() {
        if (!text_.empty()) {
            if (const auto breaks = lineBreaks(words_.gap(at_)); !breaks.empty()) {
                removeBlanksAtEnd(text_);
                text_ += breaks;
            } else if (wantsBlankBeforeWord()) {
                text_ += ' ';
            }
        }
        text_ += words_.word(at_);
    }

    /// The last character so far. One of more than a thousand bytes counts as unreadable, which keeps the
    /// time per word constant.
    std::string_view lastCharacter() const {
        constexpr std::size_t furthest = 1000;
        return lastGrapheme(std::string_view(text_).substr(text_.size() - std::min(text_.size(), furthest)));
    }

    bool wantsBlankBeforeOpening() const {
        const auto last = lastCharacter();
        return last == "," || last == "." || isLetterOrNumber(last);
    }

    bool wantsBlankBeforeWord() const {
        if (mode_ == Mode::compact) return isLetterOrNumber(lastCharacter());
        const auto last = text_.back();
        const bool isBehindQuote = last == '\x9E' && text_.ends_with("„");
        return last != '\n' && last != '(' && last != ' ' && !isBehindQuote;
    }

    void cutLastSentence() {
        removeBlanksAtEnd(text_);
        if (endsSentence(lastCharacter())) text_.pop_back();
        auto end = text_.find_last_of(".!?\n");
        while (end != std::string::npos &&
               !endsSentence(firstGraphemes(std::string_view(text_).substr(end), 1))) {
            end = end == 0 ? std::string::npos : text_.find_last_of(".!?\n", end - 1);
        }
        text_.resize(end + 1); // Without an earlier sentence nothing is left.
    }

    Words words_;
    Mode mode_;
    std::size_t at_ = 0;
    std::string text_;
    bool quoteIsOpen_ = false;
    std::vector<std::string> applied_;
};

} // namespace

Outcome apply(std::string_view text, Mode mode) { return Dictation(text, mode).carryOut(); }

} // namespace querlin::DictationCommands
