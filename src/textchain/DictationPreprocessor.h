#pragma once

#include <string>
#include <string_view>

/// The small sister of the spoken commands, for dictations that they haven't been through: no nouns are
/// told from commands, nothing is capitalised.
namespace querlin::DictationPreprocessor {

/// "hallo Komma wie geht es Fragezeichen" -> "hallo, wie geht es?" "Treffpunkt" and "Kommando" stay.
/// Repairs the spacing around all marks: "3,5" becomes "3, 5".
std::string applySpokenPunctuation(std::string_view text);

} // namespace querlin::DictationPreprocessor
