#pragma once

#include "desktop/SoundPlayer.h"
#include "foundation/Time.h"

#include <array>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

struct pa_context;
struct pa_stream;
struct pa_threaded_mainloop;

namespace querlin {

/// The sounds of a dictation on the sound server's default output, as sounds of an event. The server keeps
/// them in its sample cache and mixes them, so they may overlap. Nothing waits: the connection is made, and
/// the files are read, at the first sound, and again after the connection was lost; a sound that could only
/// be heard a second later isn't played at all. Without a server or without a sound's file there is silence,
/// which is logged once. Any thread.
class PulseSoundPlayer final : public SoundPlayer {
public:
    /// The folder with "Tink.wav", "Pop.wav" and "Funk.wav". The address of a server, or empty for the user's
    /// own.
    explicit PulseSoundPlayer(std::filesystem::path sounds, std::string server = {});
    ~PulseSoundPlayer() override;
    PulseSoundPlayer(const PulseSoundPlayer&) = delete;
    PulseSoundPlayer& operator=(const PulseSoundPlayer&) = delete;

    void play(FeedbackSound sound) override;

private:
    struct FreeLoop {
        void operator()(pa_threaded_mainloop* loop) const;
    };
    struct EndContext {
        void operator()(pa_context* context) const;
    };
    struct EndStream {
        void operator()(pa_stream* stream) const;
    };
    /// A sound on its way into the server's cache.
    struct Sample {
        PulseSoundPlayer* player = nullptr;
        std::vector<std::int16_t> samples; ///< until they are written
        std::unique_ptr<pa_stream, EndStream> upload;
        bool isCached = false;
    };
    struct Order {
        std::size_t sound;
        Instant asked;

        bool isLate() const;
    };

    // On the loop's thread
    void serve();
    void connect();
    void contextChanged();
    void upload(std::size_t sound);
    void uploadChanged(Sample& sample);
    void playWaiting();
    bool isReady() const;

    const std::filesystem::path folder_;
    const std::string server_;
    std::unique_ptr<pa_threaded_mainloop, FreeLoop> loop_;

    // Guarded by the loop's lock, which its callbacks hold
    std::unique_ptr<pa_context, EndContext> context_;
    std::array<Sample, 3> samples_;
    std::vector<Order> waiting_;  ///< for the connection, or for their sample
    std::deque<Instant> playing_; ///< orders that the server hasn't confirmed, the oldest first
    bool isSilenceLogged_ = false;
    bool isDamageLogged_ = false;
};

} // namespace querlin
