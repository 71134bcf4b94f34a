#include "textchain/Transcript.h"

#include "foundation/TextCase.h"

namespace querlin {

std::string normalizedTranscript(std::string_view text) {
    auto result = nfc(text);
    std::size_t kept = 0;
    for (std::size_t at = 0; at < result.size(); ++at) {
        const bool isCarriageReturn = result[at] == '\r' && at + 1 < result.size() && result[at + 1] == '\n';
        if (!isCarriageReturn) result[kept++] = result[at];
    }
    result.resize(kept);
    return result;
}

} // namespace querlin
