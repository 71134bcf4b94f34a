#include "platform/pulse/PulseSoundPlayer.h"

#include "foundation/Files.h"
#include "platform/pulse/SoundOutput.h"
#include "state/DiagnosticsLog.h"

#include <string_view>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr std::size_t largestFileInBytes = 4U << 20U;

/// In the order of `FeedbackSound`.
constexpr std::array<const char*, 3> names = {"Tink", "Pop", "Funk"};

} // namespace

PulseSoundPlayer::PulseSoundPlayer(const std::filesystem::path& sounds, std::string server) :
    output_(std::make_unique<SoundOutput>(std::move(server))) {
    std::string missing;
    for (std::size_t index = 0; index < names.size(); ++index) {
        const auto name = fmt::format("{}.wav", names.at(index));
        const auto file = Files::read(sounds / name, largestFileInBytes);
        auto sound = file ? WavSound::parse(*file) : std::nullopt;
        if (sound) {
            sounds_.at(index) = std::make_shared<const WavSound>(std::move(*sound));
        } else {
            missing += (missing.empty() ? "" : ", ") + name;
        }
    }
    if (!missing.empty())
        DiagnosticsLog::note("audio", fmt::format("Signaltöne fehlen oder sind beschädigt: {}.", missing));
}

PulseSoundPlayer::~PulseSoundPlayer() = default;

void PulseSoundPlayer::play(FeedbackSound sound) {
    const auto index = static_cast<std::size_t>(sound);
    if (sounds_.at(index)) output_->play(sounds_.at(index), names.at(index));
}

} // namespace querlin
