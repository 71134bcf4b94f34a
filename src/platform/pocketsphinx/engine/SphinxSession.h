#pragma once

#include "platform/pocketsphinx/engine/PocketSphinxEngine.h"

#include <cstdint>

namespace querlin {

/// One session on one decoder. Speech is cut into utterances at its pauses, because a decoder's effort at
/// the end of an utterance, and its memory, grow with the utterance. A long stretch without a pause is cut
/// where it is quiet for a moment, if it ever is.
class SphinxSession final : public EngineSession {
public:
    using GiveBack = std::function<void(PocketSphinxEngine::Prepared)>;

    SphinxSession(PocketSphinxEngine::Prepared prepared, GiveBack giveBack);
    ~SphinxSession() override;

    void accept(std::span<const std::int16_t> samples, const PieceSink& sink) override;
    void finish(const PieceSink& sink) override;

private:
    void step(std::span<const std::int16_t> samples, const PieceSink& sink);
    bool isTimeToCut() const;
    void cut(const PieceSink& sink);

    PocketSphinxEngine::Prepared prepared_;
    GiveBack giveBack_;
    std::uint64_t accepted_ = 0;
    // Of the utterance, in samples
    std::uint64_t length_ = 0;
    std::uint64_t speech_ = 0;
    std::uint64_t silence_ = 0; ///< after the speech
    double energy_ = 0;         ///< of the speech
    bool isQuiet_ = false;      ///< for a moment
};

} // namespace querlin
