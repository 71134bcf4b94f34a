#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The words to be favoured as a small language model of their own, which is mixed into the big one.
namespace querlin::ContextModel {

using Phrase = std::vector<std::string>;

/// The words of each string that can be spoken, each on its own: "Grundsicherung im Alter" gives three,
/// "Müller-Lüdenscheidt," one. A string with anything else in it ("§ 1814", "24/7") gives none.
std::vector<Phrase> phrases(const std::vector<std::string>& strings);

/// Each word of the phrases once, in their order.
std::vector<std::string> wordsOf(const std::vector<Phrase>& phrases);

/// A bigram model in the ARPA format: any phrase may begin anywhere, and its words then follow one another.
std::string arpa(const std::vector<Phrase>& phrases);

} // namespace querlin::ContextModel
