#include "HearingStages.h"

#include "Require.h"

#include "platform/helper/protocol/Frames.h"
#include "platform/recogniser/protocol/Protocol.h"
#include "platform/sherpa/OnnxMetadata.h"

#include <algorithm>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

namespace querlin::HearingStage {

namespace Protocol = RecogniserProtocol;

namespace {

void decode(const HelperProtocol::Frame& frame) {
    require(frame.payload.size() <= HelperProtocol::largestFrameInBytes, "a frame is no larger than the largest");
    if (const auto request = Protocol::openRequestOf(frame.payload))
        require(Protocol::openRequestOf(Protocol::payloadOf(*request)) == request, "what is written is read");
    if (const auto words = Protocol::wordsOf(frame.payload))
        require(Protocol::wordsOf(Protocol::payloadOf(*words)) == words, "what is written is read");
    if (const auto piece = Protocol::pieceOf(frame.payload))
        require(Protocol::pieceOf(Protocol::payloadOf(*piece)) == piece, "what is written is read");
    (void)Protocol::countOf(frame.payload);
    (void)Protocol::samplesOf(frame.payload);
}

} // namespace

void frames(std::string_view bytes, unsigned options) {
    HelperProtocol::Parser parser;
    const std::size_t step = 1 + options;
    while (!bytes.empty()) {
        const auto room = parser.room();
        const auto count = std::min({bytes.size(), room.size(), step});
        std::ranges::copy(bytes.substr(0, count), room.begin());
        parser.received(count);
        bytes.remove_prefix(count);
        for (;;) {
            const auto frame = parser.next();
            if (!frame) return require(!parser.next(), "once malformed, always malformed");
            if (!*frame) break;
            decode(**frame);
        }
    }
}

void model(std::string_view bytes, unsigned /*options*/) {
    static const int file = ::memfd_create("model", 0);
    static const auto path = "/proc/self/fd/" + std::to_string(file);
    require(::ftruncate(file, 0) == 0, "the file can be emptied");
    require(::pwrite(file, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()), "and written");
    const auto properties = OnnxMetadata::read(path);
    if (!properties) return;
    std::size_t length = 0;
    for (const auto& [key, value] : *properties) length += key.size() + value.size();
    require(length <= bytes.size(), "nothing comes from elsewhere");
}

} // namespace querlin::HearingStage
