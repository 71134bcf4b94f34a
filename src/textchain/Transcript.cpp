#include "textchain/Transcript.h"

#include "foundation/TextCase.h"

#include <algorithm>

namespace querlin {

std::string normalizedTranscript(std::string_view text) {
    auto result = nfc(text);
    auto kept = std::min(result.find('\r'), result.size());
    for (auto at = kept; at < result.size(); ++at) {
        const bool isCarriageReturn = result[at] == '\r' && at + 1 < result.size() && result[at + 1] == '\n';
        if (!isCarriageReturn) result[kept++] = result[at];
    }
    result.resize(kept);
    return result;
}

} // namespace querlin
