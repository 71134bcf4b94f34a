#pragma once

#include "textchain/Tokenizer.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace querlin {

/// A citation of a law, as it was spoken.
struct LawReference {
    /// "BGB", "SGB XII".
    std::optional<std::string> law;
    /// With its letter: "1814a".
    std::string sectionID;
    std::optional<std::string> absatz;
    std::optional<std::string> satz;
    std::optional<std::string> nummer;

    /// "§ 1814a Abs. 2 Satz 1 Nr. 3 BGB": always in this order.
    std::string formatted() const;

    bool operator==(const LawReference&) const = default;
};

/// Writes spoken citations as a German legal text does: "Paragraph achtzehnhundertvierzehn Absatz zwei BGB"
/// -> "§ 1814 Abs. 2 BGB". Whether the law or section exists is not checked.
///
/// A wrong citation is worse than none, so ambiguous words stay: in "füge den Paragraph
/// ein" and "Paragraph fünf ein wichtiger" the "ein" is no number.
namespace SpokenLawReference {

struct ParsedReference {
    LawReference reference;
    /// The token after the citation.
    std::size_t endIndex = 0;
    /// Whether "Paragraph" or "§" opened it.
    bool hadMarker = false;
};

enum class Marker : std::uint8_t { required, optional };

/// Whether a token says "Paragraph".
bool isParagraphMarker(const Tokenizer::Token& token);

/// The citation that begins at a token. "§ 5" without a law is one too.
std::optional<ParsedReference> parseReference(std::span<const Tokenizer::Token> tokens, std::size_t index,
                                              Marker marker);

/// The replacement for the tokens of a citation or command: their gap, the marks before the first one
/// ("(§" -> "("), the text, and the closing marks of the last one.
std::string replacement(const Tokenizer::Token& first, std::string_view text, const Tokenizer::Token& last);

/// Only "Paragraph" and "§" open a citation: "1814 BGB" stays.
std::string normalizeReferences(std::string_view text);

} // namespace SpokenLawReference

} // namespace querlin
