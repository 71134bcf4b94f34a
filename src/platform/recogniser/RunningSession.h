#pragma once

#include "platform/recogniser/SessionSound.h"
#include "platform/recogniser/protocol/Protocol.h"

#include "speech/RecognitionSession.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace querlin {

/// A session as the helper's thread sees it: what the helper has been sent of it and has said about it.
///
/// Places count samples from the session's beginning; the helper counts from `origin_`, where it came in.
class RunningSession {
public:
    RunningSession(std::uint32_t number, std::vector<std::string> words, RecognitionObserver observer,
                   std::shared_ptr<std::atomic<bool>> isSilent, MakeAudioConverter makeConverter);

    std::expected<void, std::string> add(const AudioBuffer& buffer) { return sound_.add(buffer); }
    void finish() { isComplete_ = true; }
    const std::vector<std::string>& words() const { return words_; }

    /// Adds the next frame for the helper; false if there is none, or it has enough to do for now.
    bool appendNextFrame(std::string& bytes);
    /// Whether the helper owes it something.
    bool isWaiting() const { return isBegun_ && (!isAccepted_ || consumed_ < sent_ || isEndSent_); }

    // What the helper says; false if that can't be.
    bool consumed(std::uint64_t count);
    bool piece(const RecogniserProtocol::Piece& piece);

    /// Begins again after the last final piece, in a new helper. False the second time.
    bool beginAgain();
    /// Whether the helper has heard of it.
    bool isBegun() const { return isBegun_; }
    void end(std::expected<void, std::string> result) const;

private:
    std::uint32_t number_;
    std::vector<std::string> words_;
    RecognitionObserver observer_;
    std::shared_ptr<std::atomic<bool>> isSilent_;

    SessionSound sound_;
    std::uint64_t origin_ = 0;
    std::uint64_t sent_ = 0;
    std::uint64_t consumed_ = 0;
    /// Up to here volatile pieces hold less than the observer knows already.
    std::uint64_t knownUpTo_ = 0;

    bool isBegun_ = false;
    bool isAccepted_ = false;
    bool isComplete_ = false; ///< no more sound follows
    bool isEndSent_ = false;
    bool hasBegunAgain_ = false;
};

} // namespace querlin
