#pragma once

#include "platform/recogniser/helper/RecognitionEngine.h"
#include "platform/sherpa/engine/SherpaLibrary.h"

#include <cstdint>

namespace querlin {

/// One session on a stream of its own.
class SherpaSession final : public EngineSession {
public:
    SherpaSession(const Sherpa::Functions& functions, const Sherpa::Recognizer* recognizer,
                  const Sherpa::Stream* stream, double paddingSeconds) :
        functions_(functions), recognizer_(recognizer), stream_(stream), paddingSeconds_(paddingSeconds) {}
    ~SherpaSession() override { functions_.destroyOnlineStream(stream_); }

    void accept(std::span<const std::int16_t> samples, const PieceSink& sink) override;
    void finish(const PieceSink& sink) override;

private:
    void feed(std::span<const float> samples);
    void decode(const PieceSink& sink);
    void endSegment(const PieceSink& sink);
    std::string text() const;

    const Sherpa::Functions& functions_;
    const Sherpa::Recognizer* recognizer_;
    const Sherpa::Stream* stream_;
    double paddingSeconds_;
    std::uint64_t accepted_ = 0;
    std::uint64_t settled_ = 0;
};

} // namespace querlin
