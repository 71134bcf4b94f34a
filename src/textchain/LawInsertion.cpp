#include "textchain/LawInsertion.h"

#include "foundation/Characters.h"
#include "foundation/Graphemes.h"
#include "foundation/Requirement.h"
#include "foundation/Trimming.h"
#include "foundation/WordSet.h"
#include "state/DiagnosticsLog.h"
#include "textchain/GermanNumberWords.h"
#include "textchain/SpokenLawReference.h"

#include <algorithm>
#include <ranges>

#include <fmt/format.h>

namespace querlin::SpokenLawReference {

namespace {

using Tokenizer::Token;
using Tokens = std::span<const Token>;

constexpr WordSet<2> openings({"füge", "fuege"});
constexpr WordSet<1> closingParticle({"ein"});
constexpr WordSet<2> closingVerbs({"einfügen", "einfuegen"});

/// The number of the Absatz that a line opens, "(2) Wer …" -> "2"; unset for any other line.
std::optional<std::string_view> openedAbsatz(std::string_view line) {
    const auto trimmed = trimBlanksAndTabs(line);
    if (!trimmed.starts_with('(')) return std::nullopt;
    const auto inner = trimmed.substr(1);
    std::size_t length = 0;
    for (const auto character : Graphemes(inner)) {
        if (!isNumeric(character)) break;
        length += character.size();
    }
    if (length == 0 || !inner.substr(length).starts_with(')')) return std::nullopt;
    return inner.substr(0, length);
}

/// The lines from the one that opens the Absatz up to the next such line; "(2a)" does not open one.
std::optional<std::string> absatzText(std::string_view absatz, std::string_view text) {
    std::string kept;
    bool isCollecting = false;
    for (const auto part : std::views::split(text, '\n')) {
        const std::string_view line(part.begin(), part.end());
        if (const auto opened = openedAbsatz(line)) {
            if (isCollecting) break;
            isCollecting = *opened == absatz;
        }
        if (isCollecting) kept.append(line).append("\n");
    }
    const auto trimmed = trimWhitespaceAndNewlines(kept);
    return trimmed.empty() ? std::nullopt : std::optional<std::string>(trimmed);
}

std::optional<LegalHit> sectionFor(const LawReference& reference, LegalLookup& laws) {
    if (reference.law) {
        if (auto section = laws.section(reference.sectionID, *reference.law))
            return LegalHit{*reference.law, std::move(*section)};
    }
    return laws.sectionInAnyLaw(reference.sectionID);
}

/// Heading and text; unset if no law has such a section.
std::optional<std::string> lawText(const LawReference& reference, LegalLookup& laws) {
    const auto hit = sectionFor(reference, laws);
    if (!hit) return std::nullopt;
    const auto& [law, section] = *hit;
    std::string heading(section.label);
    std::string body(section.text);
    if (reference.absatz) {
        if (auto absatz = absatzText(*reference.absatz, section.text)) {
            heading += " Abs. " + *reference.absatz;
            body = std::move(*absatz);
        } else {
            DiagnosticsLog::trace("gesetz",
                                  fmt::format("Absatz {} in {} nicht gefunden – ganzer Paragraph eingefügt.",
                                              *reference.absatz, section.label.view()));
        }
    }
    const auto* dash = section.title.view().empty() ? "" : " – ";
    return fmt::format("{} {}{}{}\n{}", heading, law.view(), dash, section.title.view(), body);
}

/// Whether a citation without "Paragraph" may begin here.
bool beginsWithNumber(const Token& token) {
    const auto word = token.normalized;
    if (GermanNumberWords::isNumberWord(word)) return true;
    return !word.empty() && std::ranges::all_of(Graphemes(word), [](std::string_view character) {
        return isNumeric(character);
    });
}

/// The command that starts at the token `first`, with its citation at `citation` and one of `closings` at its
/// end.
std::optional<Tokenizer::Replacement> command(Tokens tokens, std::size_t first, std::size_t citation,
                                              const auto& closings, LegalLookup& laws) {
    const auto parsed = parseReference(tokens, citation, Marker::optional);
    if (!parsed || (!parsed->hadMarker && !parsed->reference.law)) return std::nullopt;
    const auto last = parsed->endIndex;
    if (last >= tokens.size() || !closings.contains(tokens[last].normalized)) return std::nullopt;
    const auto text = lawText(parsed->reference, laws);
    if (!text) return std::nullopt;
    return Tokenizer::Replacement{replacement(tokens[first], *text, tokens[last]), last + 1};
}

} // namespace

std::string applyInsertCommands(std::string_view text, LegalLookup& laws) {
    constexpr auto words = Requirement::oneOf("füge|fuege");
    if (!words.isMetBy(text)) return std::string(text);
    return Tokenizer::replacing(text, [&laws](Tokens tokens, std::size_t at) {
        if (openings.contains(tokens[at].normalized))
            return command(tokens, at, at + 1, closingParticle, laws);
        if (isParagraphMarker(tokens[at]) || beginsWithNumber(tokens[at]))
            return command(tokens, at, at, closingVerbs, laws);
        return std::optional<Tokenizer::Replacement>();
    });
}

} // namespace querlin::SpokenLawReference
