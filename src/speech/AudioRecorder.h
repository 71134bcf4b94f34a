#pragma once

#include "foundation/Clock.h"
#include "foundation/Lifetime.h"
#include "foundation/MainQueue.h"
#include "speech/AudioDevices.h"
#include "speech/AudioEngine.h"
#include "speech/AudioFiles.h"
#include "state/RecordingFolder.h"

#include <atomic>
#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace querlin {

/// Why a recording could not begin.
struct AudioRecorderError {
    enum class Kind : std::uint8_t {
        engineFailed,
        noInputDevice,
        fileFailed ///< the recording's file can't be made
    };
    Kind kind = Kind::engineFailed;
    std::string detail;

    /// The German text for the user.
    std::string description() const;
};

/// What became of a change of the audio hardware in mid-recording.
struct ConfigurationChange {
    enum class Kind : std::uint8_t {
        resumed,       ///< same format, the recording goes on; the text is the device's name
        formatChanged, ///< the recorder does nothing more; the text is the device's name
        failed         ///< no sound comes any more; the text says why
    };
    Kind kind = Kind::failed;
    std::string text;

    bool operator==(const ConfigurationChange&) const = default;
};

/// Whether a recording leaves a file.
enum class WriteToDisk : std::uint8_t { No, Yes };

/// What a recorder works with; all of it outlives the recorder.
struct AudioRecorderParts {
    MainQueue& mainQueue;
    const Clock& clock;
    AudioHardware& hardware;
    AudioFileCreator& files;
    RecordingFolder folder;
};

/// The microphone for the length of one dictation: hands buffers on at once, writes the same sound to a
/// file, reports a level, and outlives a change of the hardware that keeps the format. Used again from
/// dictation to dictation. Main thread, but for what is said of the buffers.
class AudioRecorder {
public:
    explicit AudioRecorder(AudioRecorderParts parts);
    ~AudioRecorder();
    AudioRecorder(const AudioRecorder&) = delete;
    AudioRecorder& operator=(const AudioRecorder&) = delete;

    /// Called on the audio thread with every buffer, before it goes to the file. Empty for none; a
    /// call that is under way when this returns may still come to the former one.
    void setOnBuffer(std::function<void(const AudioBuffer&)> onBuffer);
    /// A smoothed level from 0 to 1, on the main thread, at most every 0.05 seconds.
    void setOnLevel(std::function<void(float)> onLevel);
    void setOnConfigurationChange(std::function<void(ConfigurationChange)> onChange);
    /// The input to use; none means the system's default. Counts from the next start on.
    void setPreferredDeviceUID(std::optional<std::string> uid) { preferredDeviceUID_ = std::move(uid); }

    /// Opens the microphone. A recording of before that is still held is discarded. No effect while
    /// recording. After a failure there is no recording, and no file is left.
    std::expected<void, AudioRecorderError> start(WriteToDisk file);
    /// Closes the microphone and the file. No effect while idle.
    void stop();
    bool isRecording() const { return startedAt_.has_value(); }
    /// How long the present recording runs, in seconds; 0 while idle.
    double duration() const;

    /// The present or last recording, until it is discarded or detached; null for none.
    const RecordingFile* recording() const { return recording_ ? &*recording_ : nullptr; }
    /// Deletes it. Harmless if there is none.
    void discardRecording();
    /// Hands it over to the caller, who answers for it from then on.
    std::optional<RecordingFile> detachRecording() { return std::exchange(recording_, std::nullopt); }

private:
    using OnBuffer = std::function<void(const AudioBuffer&)>;

    void chooseDevice();
    std::expected<void, AudioRecorderError> openFile(AudioFormat format);
    void closeFile();
    void installTap(AudioFormat format);
    void take(const AudioBuffer& buffer);
    void reportLevel(const AudioBuffer& buffer);
    void configurationChanged();

    AudioRecorderParts parts_;
    AudioDevices devices_;
    std::function<void(float)> onLevel_;
    std::function<void(ConfigurationChange)> onChange_;
    std::optional<std::string> preferredDeviceUID_;
    std::optional<Instant> startedAt_;
    std::optional<AudioFormat> activeFormat_;
    std::optional<RecordingFile> recording_;

    // Shared with the audio thread
    std::mutex onBufferLock_;
    std::shared_ptr<const OnBuffer> onBuffer_;
    std::atomic<bool> wantsLevel_ = false;
    std::mutex fileLock_;
    std::unique_ptr<AudioFileWriter> file_;

    // The audio thread's own while a tap is installed
    float smoothedLevel_ = 0;
    std::optional<Instant> lastLevelReport_;
    std::function<void(float)> postLevel_;

    std::unique_ptr<AudioEngine> engine_;
    Registration configurationObserver_;
    Lifetime lifetime_;
};

} // namespace querlin
