#pragma once

#include "desktop/SoundPlayer.h"

#include <array>
#include <filesystem>
#include <memory>
#include <string>

namespace querlin {

class SoundOutput;
struct WavSound;

/// The sounds of a dictation on the sound server's default output, as sounds of an event. Each is a stream of
/// its own, so they may overlap. Nothing waits: a connection is made at the start and, when it was lost, at
/// the next sound; a sound that could only be heard much later isn't heard at all. Without a server or
/// without a sound's file there is silence, which is noted once. Any thread.
class PulseSoundPlayer final : public SoundPlayer {
public:
    /// The folder with "Tink.wav", "Pop.wav" and "Funk.wav", which are read now. The address of a server, or
    /// empty for the user's own.
    explicit PulseSoundPlayer(const std::filesystem::path& sounds, std::string server = {});
    ~PulseSoundPlayer() override;
    PulseSoundPlayer(const PulseSoundPlayer&) = delete;
    PulseSoundPlayer& operator=(const PulseSoundPlayer&) = delete;

    void play(FeedbackSound sound) override;

private:
    std::array<std::shared_ptr<const WavSound>, 3> sounds_;
    std::unique_ptr<SoundOutput> output_;
};

} // namespace querlin
