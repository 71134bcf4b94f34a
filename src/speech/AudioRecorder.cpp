#include "speech/AudioRecorder.h"

#include "speech/AudioLevel.h"
#include "state/DiagnosticsLog.h"

namespace querlin {

using Change = ConfigurationChange::Kind;

namespace {

constexpr std::uint32_t framesPerBuffer = 2048;
constexpr Duration levelInterval = std::chrono::milliseconds(50);

} // namespace

std::string AudioRecorderError::description() const {
    switch (kind) {
    case Kind::engineFailed:
        return "Audio-Engine konnte nicht starten: " + detail;
    case Kind::noInputDevice:
        return "Kein Mikrofon gefunden.";
    case Kind::fileFailed:
        return detail;
    }
    return detail;
}

AudioRecorder::AudioRecorder(AudioRecorderParts parts) :
    parts_(std::move(parts)), devices_(parts_.hardware), engine_(parts_.hardware.makeEngine()) {
    postLevel_ = lifetime_.onMain(parts_.mainQueue, [this](float level) {
        if (onLevel_) onLevel_(level);
    });
}

AudioRecorder::~AudioRecorder() {
    if (isRecording()) {
        engine_->removeTap();
        engine_->stop();
    }
}

void AudioRecorder::setOnBuffer(OnBuffer onBuffer) {
    auto shared = onBuffer ? std::make_shared<const OnBuffer>(std::move(onBuffer)) : nullptr;
    const std::scoped_lock guard(onBufferLock_);
    onBuffer_.swap(shared); // The former one goes when the lock is free again.
}

void AudioRecorder::setOnLevel(std::function<void(float)> onLevel) {
    onLevel_ = std::move(onLevel);
    wantsLevel_ = static_cast<bool>(onLevel_);
}

void AudioRecorder::setOnConfigurationChange(std::function<void(ConfigurationChange)> onChange) {
    onChange_ = std::move(onChange);
}

std::expected<void, AudioRecorderError> AudioRecorder::start(WriteToDisk file) {
    using Kind = AudioRecorderError::Kind;
    if (isRecording()) return {};
    engine_->reset();
    chooseDevice();
    const auto format = engine_->inputFormat();
    if (!format.isUsable()) return std::unexpected(AudioRecorderError{Kind::noInputDevice, {}});

    discardRecording();
    if (file == WriteToDisk::Yes) {
        if (auto opened = openFile(format); !opened) return opened;
    }
    smoothedLevel_ = 0;
    installTap(format);
    if (const auto started = engine_->start(); !started) {
        engine_->removeTap();
        closeFile();
        discardRecording(); // Nothing was recorded, so there is nothing to rescue.
        return std::unexpected(AudioRecorderError{Kind::engineFailed, started.error()});
    }
    configurationObserver_ = engine_->observeConfigurationChange([this] { configurationChanged(); });
    activeFormat_ = format;
    startedAt_ = parts_.clock.instant();
    return {};
}

/// A microphone that is missing or refuses never stops a dictation: the default input is used.
void AudioRecorder::chooseDevice() {
    if (!preferredDeviceUID_) return;
    const auto device = devices_.deviceID(*preferredDeviceUID_);
    if (!device) {
        DiagnosticsLog::note("audio", "Gewähltes Mikrofon nicht verfügbar – nutze Systemvorgabe.");
    } else if (const auto chosen = engine_->setDevice(*device); !chosen) {
        DiagnosticsLog::note("audio", "Mikrofon konnte nicht gesetzt werden: " + chosen.error() +
                                          " – nutze Systemvorgabe.");
    }
}

std::expected<void, AudioRecorderError> AudioRecorder::openFile(AudioFormat format) {
    const auto failed = [](std::string detail) {
        return std::unexpected(AudioRecorderError{AudioRecorderError::Kind::fileFailed, std::move(detail)});
    };
    auto recording = parts_.folder.begin();
    if (!recording) return failed(recording.error().description());
    auto writer = parts_.files.create(recording->audio(), format);
    if (!writer) {
        recording->discard();
        return failed(writer.error());
    }
    recording_ = std::move(*recording);
    const std::scoped_lock guard(fileLock_);
    file_ = std::move(*writer);
    return {};
}

void AudioRecorder::closeFile() {
    const std::scoped_lock guard(fileLock_);
    file_.reset();
}

void AudioRecorder::stop() {
    if (!isRecording()) return;
    configurationObserver_.reset();
    engine_->removeTap();
    engine_->stop();
    closeFile();
    startedAt_.reset();
    activeFormat_.reset();
    if (onLevel_) onLevel_(0);
}

double AudioRecorder::duration() const {
    return startedAt_ ? inSeconds(parts_.clock.instant() - *startedAt_) : 0;
}

void AudioRecorder::discardRecording() {
    if (recording_) recording_->discard();
    recording_.reset();
}

// The audio thread

void AudioRecorder::installTap(AudioFormat format) {
    engine_->installTap(framesPerBuffer, format, [this](const AudioBuffer& buffer) { take(buffer); });
}

/// The recogniser gets a buffer before the disk does.
void AudioRecorder::take(const AudioBuffer& buffer) {
    std::shared_ptr<const OnBuffer> onBuffer;
    {
        const std::scoped_lock guard(onBufferLock_);
        onBuffer = onBuffer_;
    }
    if (onBuffer) (*onBuffer)(buffer);
    {
        const std::scoped_lock guard(fileLock_);
        // What can't be written is dropped: the words still reach the recogniser.
        if (file_) (void)file_->write(buffer);
    }
    if (wantsLevel_) reportLevel(buffer);
}

void AudioRecorder::reportLevel(const AudioBuffer& buffer) {
    const auto level = AudioLevel::of(buffer);
    if (!level) return;
    smoothedLevel_ = AudioLevel::smoothed(smoothedLevel_, *level);
    const auto now = parts_.clock.instant();
    if (lastLevelReport_ && now - *lastLevelReport_ <= levelInterval) return;
    lastLevelReport_ = now;
    postLevel_(smoothedLevel_);
}

// A change of the hardware

void AudioRecorder::configurationChanged() {
    if (!isRecording()) return;
    const auto tell = [this](Change kind, std::string text) {
        if (onChange_) onChange_({kind, std::move(text)});
    };
    const auto format = engine_->inputFormat();
    const auto device = devices_.systemDefaultInput();
    const std::string name = device ? device->name : "unbekanntes Gerät";
    if (!format.isUsable()) {
        tell(Change::failed, "Kein Eingang mehr verfügbar.");
        return;
    }
    if (format != *activeFormat_) {
        tell(Change::formatChanged, name);
        return;
    }
    engine_->removeTap();
    installTap(format);
    if (const auto started = engine_->start(); !started) {
        tell(Change::failed, started.error());
        return;
    }
    tell(Change::resumed, name);
}

} // namespace querlin
