#pragma once

#include <string>
#include <string_view>

namespace querlin {

/// The text of a recogniser or a model in the form that the text stages expect: well-formed,
/// composed ("o\u0308" -> "ö"), line breaks as "\n", also for "\r\n" and "\r". Ill-formed bytes become
/// U+FFFD.
std::string normalizedTranscript(std::string_view text);

} // namespace querlin
