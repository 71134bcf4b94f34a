#pragma once

#include "cleanup/TextTreatment.h"

#include <string>
#include <string_view>

/// Cleans a transcript by fixed German rules, the same for every language and style: hesitations, fillers
/// and stuttered words go, spoken corrections are resolved, punctuation is repaired, sentences begin with a
/// capital and end with a mark. "ähm um fünf, nein, um sechs" -> "Um sechs."
namespace querlin::RuleBasedEnhancer {

/// Any thread. Text that has been through the spoken commands keeps its "Komma" and "Punkt": what they left
/// are nouns.
std::string clean(std::string_view text, TextTreatment treatment);

} // namespace querlin::RuleBasedEnhancer
