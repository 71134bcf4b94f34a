#include "textchain/DictationCommands.h"

#include "foundation/Characters.h"
#include "foundation/Graphemes.h"
#include "foundation/Pattern.h"
#include "foundation/Trimming.h"
#include "foundation/Words.h"
#include "textchain/Sentences.h"
#include "textchain/SpacingRules.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>

namespace querlin::DictationCommands {

namespace {

/// One to three words, in their compared form.
using Phrase = std::array<std::string_view, 3>;

enum class Noun : std::uint8_t { never, possible };

struct Command {
    Phrase phrase;
    /// Empty for the quotation mark that opens and closes by turns.
    std::string_view replacement;
    Noun noun;
};

/// The first row that matches counts: longer phrases stand before their beginnings.
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

/// Behind one of these a doubtful command is a noun.
constexpr std::array<std::string_view, 91> determiners = {
    "der",       "die",       "das",       "den",       "dem",          "des",          "ein",
    "eine",      "einen",     "einem",     "einer",     "eines",        "dieser",       "diese",
    "dieses",    "diesen",    "diesem",    "jener",     "jene",         "jenes",        "jeden",
    "jeder",     "jede",      "jedes",     "kein",      "keine",        "keinen",       "keinem",
    "keiner",    "welcher",   "welche",    "welches",   "mein",         "meine",        "meinen",
    "meinem",    "meiner",    "sein",      "seine",     "seinen",       "seinem",       "seiner",
    "ihr",       "ihre",      "ihren",     "ihrem",     "ihrer",        "unser",        "unsere",
    "unseren",   "zum",       "zur",       "am",        "im",           "vom",          "beim",
    "ans",       "ins",       "aufs",      "mit",       "ohne",         "über",         "unter",
    "zwischen",  "gegen",     "durch",     "erster",    "erste",        "erstes",       "zweiter",
    "zweite",    "zweites",   "dritter",   "dritte",    "drittes",      "letzter",      "letzte",
    "letztes",   "wichtiger", "wichtige",  "wichtiges", "strittiger",   "strittige",    "strittiges",
    "entscheidender",         "entscheidende",          "entscheidendes",               "springender",
    "wunder",    "obiger",    "genannter",
};

/// In front of one of these a doubtful command is a noun.
constexpr std::array<std::string_view, 33> followingVerbs = {
    "ist",     "war",    "sind",   "waren",    "wäre",   "wären",    "wird", "wurde",  "werden",
    "würde",   "worden", "bleibt", "blieb",    "gilt",   "galt",     "scheint", "erscheint", "lautet",
    "betrifft", "steht", "stand",  "muss",     "musste", "kann",     "konnte", "soll",  "sollte",
    "darf",    "durfte", "hat",    "hatte",    "haben",  "hätte",
};

static_assert(!determiners.back().empty() && !followingVerbs.back().empty(), "no row is missing");

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

std::string tidied(std::string_view text, Mode mode) {
    if (mode == Mode::compact) return std::string(trimWhitespaceAndNewlines(compactTidying().apply(text)));
    return capitalizeSentences(trimWhitespaceAndNewlines(proseTidying().apply(text)));
}

struct SpokenWord {
    GapAndWord written;
    std::string compared;
};

std::vector<SpokenWord> spokenWords(std::string_view text) {
    std::vector<SpokenWord> words;
    for (const auto& written : splitIntoWords(text).words) {
        words.push_back({written, comparedForm(written.word)});
    }
    return words;
}

std::size_t lengthOf(const Phrase& phrase) {
    return static_cast<std::size_t>(
        std::ranges::find_if(phrase, [](auto word) { return word.empty(); }) - phrase.begin());
}

/// What stands there in place of the white space between two words of the source; at most one empty line.
std::string_view lineBreaks(std::string_view gap) {
    const auto count = std::ranges::count(gap, '\n');
    return std::string_view("\n\n").substr(0, std::min<std::size_t>(2, static_cast<std::size_t>(count)));
}

bool isLetterOrNumber(std::string_view character) { return isAlphabetic(character) || isNumeric(character); }

void removeBlanksAtEnd(std::string& text) { text.resize(text.find_last_not_of(' ') + 1); }

/// The text as far as it has been said, and what has been done.
class Dictation {
public:
    Dictation(std::string_view source, Mode mode) : words_(spokenWords(source)), mode_(mode) {
        text_.reserve(source.size());
    }

    Outcome carryOut() {
        for (at_ = 0; at_ < words_.size();) {
            if (findPhrase(discardAll) != 0) {
                applied_.emplace_back("alles verwerfen");
                return {"", true, std::move(applied_)};
            }
            if (const auto length = findPhrase(deleteSentence)) {
                cutLastSentence();
                applied_.emplace_back("streiche das");
                at_ += length;
            } else if (const auto* command = findCommand()) {
                write(*command);
                at_ += lengthOf(command->phrase);
            } else {
                write(words_[at_].written);
                ++at_;
            }
        }
        return {tidied(text_, mode_), false, std::move(applied_)};
    }

private:
    bool isSpokenHere(const Phrase& phrase) const {
        for (std::size_t i = 0; i < phrase.size() && !phrase[i].empty(); ++i) {
            if (at_ + i >= words_.size() || words_[at_ + i].compared != phrase[i]) return false;
        }
        return true;
    }

    /// The length of the first phrase that stands here; 0 if none does.
    std::size_t findPhrase(std::span<const Phrase> phrases) const {
        const auto found = std::ranges::find_if(phrases, [this](const auto& phrase) { return isSpokenHere(phrase); });
        return found == phrases.end() ? 0 : lengthOf(*found);
    }

    const Command* findCommand() const {
        const auto* found =
            std::ranges::find_if(commands, [this](const auto& command) { return isSpokenHere(command.phrase); });
        if (found == commands.end() || (found->noun == Noun::possible && isNoun(lengthOf(found->phrase)))) return nullptr;
        return found;
    }

    bool isNoun(std::size_t length) const {
        const auto next = at_ + length;
        const bool standsBehindDeterminer = at_ > 0 && std::ranges::count(determiners, words_[at_ - 1].compared) > 0;
        return standsBehindDeterminer ||
               (next < words_.size() && std::ranges::count(followingVerbs, words_[next].compared) > 0);
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

    void write(const GapAndWord& word) {
        if (!text_.empty()) {
            if (const auto breaks = lineBreaks(word.gap); !breaks.empty()) {
                removeBlanksAtEnd(text_);
                text_ += breaks;
            } else if (wantsBlankBeforeWord()) {
                text_ += ' ';
            }
        }
        text_ += word.word;
    }

    bool wantsBlankBeforeOpening() const {
        const auto last = lastGrapheme(text_);
        return last == "," || last == "." || isLetterOrNumber(last);
    }

    bool wantsBlankBeforeWord() const {
        if (mode_ == Mode::compact) return isLetterOrNumber(lastGrapheme(text_));
        return !text_.ends_with('\n') && !text_.ends_with('(') && !text_.ends_with("„") && !text_.ends_with(' ');
    }

    void cutLastSentence() {
        removeBlanksAtEnd(text_);
        if (endsSentence(lastGrapheme(text_))) text_.pop_back();
        auto end = text_.find_last_of(".!?\n");
        while (end != std::string::npos && !endsSentence(firstGraphemes(std::string_view(text_).substr(end), 1))) {
            end = end == 0 ? std::string::npos : text_.find_last_of(".!?\n", end - 1);
        }
        text_.resize(end + 1); // Nothing is left where no sentence stands before it.
    }

    std::vector<SpokenWord> words_;
    Mode mode_;
    std::size_t at_ = 0;
    std::string text_;
    bool quoteIsOpen_ = false;
    std::vector<std::string> applied_;
};

} // namespace

Outcome apply(std::string_view text, Mode mode) { return Dictation(text, mode).carryOut(); }

} // namespace querlin::DictationCommands
