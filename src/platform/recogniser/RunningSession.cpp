#include "platform/recogniser/RunningSession.h"

#include "foundation/Utf8.h"
#include "platform/helper/protocol/Frames.h"

#include <algorithm>
#include <utility>

namespace querlin {

namespace Protocol = RecogniserProtocol;

namespace {

constexpr std::size_t mostSamplesInFrame = Protocol::sampleRate / 4;
/// What the helper has before it at any time; so another session need not wait for more than this.
constexpr std::uint64_t mostSamplesAhead = std::uint64_t(2) * Protocol::sampleRate;

} // namespace

RunningSession::RunningSession(std::uint32_t number, std::vector<std::string> words,
                               RecognitionObserver observer, std::shared_ptr<std::atomic<bool>> isSilent,
                               MakeAudioConverter makeConverter) :
    number_(number),
    words_(std::move(words)),
    observer_(std::move(observer)),
    isSilent_(std::move(isSilent)),
    sound_(std::move(makeConverter)) {}

bool RunningSession::appendNextFrame(std::string& bytes) {
    if (!isBegun_) {
        HelperProtocol::append(bytes, Protocol::Kind::begin, number_, Protocol::payloadOf(words_));
        isBegun_ = true;
        return true;
    }
    if (const auto next = sound_.from(sent_, mostSamplesInFrame); !next.empty()) {
        if (sent_ - consumed_ >= mostSamplesAhead) return false;
        HelperProtocol::append(bytes, Protocol::Kind::audio, number_, Protocol::payloadOf(next));
        sent_ += next.size();
        return true;
    }
    if (!isComplete_ || isEndSent_) return false;
    HelperProtocol::append(bytes, Protocol::Kind::end, number_);
    isEndSent_ = true;
    return true;
}

bool RunningSession::consumed(std::uint64_t count) {
    isAccepted_ = true;
    if (count < consumed_ - origin_ || count > sent_ - origin_) return false;
    consumed_ = origin_ + count;
    return true;
}

bool RunningSession::piece(const Protocol::Piece& piece) {
    if (piece.settled > sent_ - origin_) return false;
    if (piece.isFinal) sound_.forget(origin_ + piece.settled);
    const bool isNews = piece.isFinal ? !piece.text.empty() : consumed_ >= knownUpTo_;
    if (isNews && !isSilent_->load()) observer_.onPiece(validUtf8(piece.text), piece.isFinal);
    return true;
}

bool RunningSession::beginAgain() {
    if (std::exchange(hasBegunAgain_, true)) return false;
    knownUpTo_ = consumed_;
    origin_ = sent_ = consumed_ = sound_.begin();
    isBegun_ = isAccepted_ = isEndSent_ = false;
    return true;
}

void RunningSession::end(std::expected<void, std::string> result) const {
    observer_.onEnd(std::move(result));
}

} // namespace querlin
