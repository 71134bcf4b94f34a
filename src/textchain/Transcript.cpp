#include "textchain/Transcript.h"

#include "foundation/TextCase.h"

#include <algorithm>

namespace querlin {

std::string normalizedTranscript(std::string_view text) {
    auto result = nfc(text);
    auto kept = std::min(result.find('\r'), result.size());
    for (auto at = kept; at < result.size(); ++at) {
        const bool isReturn = result[at] == '\r';
        if (isReturn && at + 1 < result.size() && result[at + 1] == '\n') continue;
        result[kept++] = isReturn ? '\n' : result[at];
    }
    result.resize(kept);
    return result;
}

} // namespace querlin
