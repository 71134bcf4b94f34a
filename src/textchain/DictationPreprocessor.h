#pragma once

#include <string>
#include <string_view>

/// A simpler version of the spoken commands, for dictations that they haven't been applied to: it doesn't
/// distinguish nouns from commands and capitalises nothing.
namespace querlin::DictationPreprocessor {

/// "hallo Komma wie geht es Fragezeichen" -> "hallo, wie geht es?" "Treffpunkt" and "Kommando" stay.
/// Repairs the spacing around all marks: "3,5" becomes "3, 5".
std::string applySpokenPunctuation(std::string_view text);

} // namespace querlin::DictationPreprocessor
