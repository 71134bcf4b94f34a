#pragma once

#include "foundation/Lifetime.h"
#include "foundation/MainQueue.h"
#include "platform/pulse/PulseConnection.h"
#include "speech/AudioEngine.h"

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace querlin {

/// A record stream of the sound server. The server is asked for pieces of 20 ms, so at most as much is
/// missing at the end of a recording; here they are gathered to whole buffers. What a stall of the loop
/// leaves unread the server keeps, for many seconds.
class PulseEngine final : public AudioEngine {
public:
    PulseEngine(MainQueue& queue, PulseConnection& connection);
    ~PulseEngine() override;
    PulseEngine(const PulseEngine&) = delete;
    PulseEngine& operator=(const PulseEngine&) = delete;

    /// Above 0, where the server counts from 0.
    static std::uint32_t deviceNumber(const PulseSource& source) { return source.index + 1; }

    void reset() override;
    std::expected<void, std::string> setDevice(std::uint32_t deviceID) override;
    AudioFormat inputFormat() override;
    void installTap(std::uint32_t frames, AudioFormat format, Tap tap) override;
    void removeTap() override;
    std::expected<void, std::string> start() override;
    void stop() override;
    bool isRunning() const override;
    Registration observeConfigurationChange(std::function<void()> changed) override;

private:
    struct EndStream {
        void operator()(pa_stream* stream) const;
    };
    using Stream = std::unique_ptr<pa_stream, EndStream>;

    /// What an observer knows, or was there at the start.
    struct Situation {
        std::string source;
        AudioFormat format;
        bool streams = false;

        bool operator==(const Situation&) const = default;
    };

    /// Null if there is none.
    const PulseSource* presentSource(const PulseInputs& inputs) const;
    Situation situation();
    std::expected<Stream, std::string> open(const PulseSource& source);
    void streamChanged(pa_stream* stream);
    void giveUpOpening();
    bool isGood() const;
    void lookAround();

    // On the loop, or with its lock held
    void read(pa_stream* stream);
    void take(const float* samples, std::size_t count);
    void handOn(std::size_t count);

    MainQueue& queue_;
    PulseConnection& connection_;
    std::optional<std::string> chosen_; ///< the name of the source that was set
    std::function<void()> changed_;
    Situation known_;
    int attempts_ = 0;
    Registration nextAttempt_;
    Registration openingLimit_;

    // Guarded by the loop's lock
    Stream stream_;
    bool wasReady_ = false; ///< the newest stream
    std::optional<std::string>
        openingFailure_; ///< of a stream that `start` didn't wait for; the next one says so
    std::string streamSource_;
    AudioFormat streamFormat_;
    Tap tap_;
    std::size_t samplesPerBuffer_ = 0;
    AudioFormat format_;
    std::vector<float> gathered_;

    std::atomic<bool> isLookDue_ = false;
    std::function<void()> postLook_;
    Registration listening_;
    Lifetime lifetime_;
};

} // namespace querlin
