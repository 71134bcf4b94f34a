#pragma once

#include "foundation/Files.h"
#include "foundation/MainQueue.h"
#include "speech/AudioEngine.h"
#include "speech/AudioFiles.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace querlin {

/// A machine with one microphone, "Headset", and scripted engines.
class FakeAudioHardware final : public AudioHardware {
public:
    class Engine;

    std::shared_ptr<const Inputs> inputs() override { return std::make_shared<Inputs>(list, standard); }
    std::unique_ptr<AudioEngine> makeEngine() override;

    /// Delivers a buffer, as from the audio thread.
    void deliver(std::span<const float> samples);
    /// The hardware changes: from now on inputs have this format, and the engines stop.
    void change(AudioFormat newFormat);

    std::vector<Device> list = {{7, "usb-1", "Headset", 1}};
    std::uint32_t standard = 7;
    AudioFormat format{48000, 1};
    std::optional<std::string> nextStartError;
    std::optional<std::string> deviceError;
    std::vector<Engine*> engines;
};

class FakeAudioHardware::Engine final : public AudioEngine {
public:
    explicit Engine(FakeAudioHardware& hardware) : hardware_(hardware) { hardware_.engines.push_back(this); }
    ~Engine() override { std::erase(hardware_.engines, this); }

    void reset() override { device = 0; }
    std::expected<void, std::string> setDevice(std::uint32_t deviceID) override {
        if (hardware_.deviceError) return std::unexpected(*hardware_.deviceError);
        device = deviceID;
        return {};
    }
    AudioFormat inputFormat() override { return hardware_.format; }
    void installTap(std::uint32_t, AudioFormat, Tap newTap) override { tap = std::move(newTap); }
    void removeTap() override { tap = nullptr; }
    std::expected<void, std::string> start() override {
        if (hardware_.nextStartError) return std::unexpected(*std::exchange(hardware_.nextStartError, std::nullopt));
        running = true;
        return {};
    }
    void stop() override { running = false; }
    bool isRunning() const override { return running; }
    Registration observeConfigurationChange(std::function<void()> call) override {
        changed = std::move(call);
        return Registration([this] { changed = nullptr; });
    }

    std::uint32_t device = 0;
    Tap tap;
    bool running = false;
    std::function<void()> changed;

private:
    FakeAudioHardware& hardware_;
};

inline std::unique_ptr<AudioEngine> FakeAudioHardware::makeEngine() { return std::make_unique<Engine>(*this); }

inline void FakeAudioHardware::deliver(std::span<const float> samples) {
    for (auto* engine : engines) {
        if (engine->running && engine->tap) engine->tap({format, samples});
    }
}

inline void FakeAudioHardware::change(AudioFormat newFormat) {
    format = newFormat;
    for (auto* engine : engines) {
        engine->running = false;
        if (engine->changed) engine->changed();
    }
}

/// Recordings whose file says no more than that it is one; what was written is kept beside.
class FakeAudioFiles final : public AudioFileCreator {
public:
    std::expected<std::unique_ptr<AudioFileWriter>, std::string> create(const std::filesystem::path& path, AudioFormat) override {
        if (error) return std::unexpected(*error);
        (void)Files::writeAtomically(path, "caff-Ton", Files::Durability::Unsynced);
        return std::make_unique<Writer>(*this);
    }

    std::vector<float> written;
    std::optional<std::string> error;      ///< no file can be made
    std::optional<std::string> writeError; ///< nothing can be written
    int open = 0;

private:
    class Writer final : public AudioFileWriter {
    public:
        explicit Writer(FakeAudioFiles& files) : files_(files) { ++files_.open; }
        ~Writer() override { --files_.open; }
        std::expected<void, std::string> write(const AudioBuffer& buffer) override {
            if (files_.writeError) return std::unexpected(*files_.writeError);
            files_.written.insert(files_.written.end(), buffer.samples.begin(), buffer.samples.end());
            return {};
        }

    private:
        FakeAudioFiles& files_;
    };
};

} // namespace querlin
