#pragma once

#include "speech/AudioBuffer.h"
#include "state/RecordingFolder.h"

#include <cstdint>
#include <expected>
#include <functional>
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
};

/// Whether a recording leaves a file.
enum class WriteToDisk : std::uint8_t { No, Yes };

/// The microphone for the length of one dictation: hands buffers on at once and writes the same sound
/// to a file. Main thread, but for the buffers.
class AudioRecorder {
public:
    virtual ~AudioRecorder() = default;

    /// Called on the audio thread with every buffer, before it goes to the file. Empty for none; a
    /// call that is under way when this returns may still come to the former one.
    virtual void setOnBuffer(std::function<void(const AudioBuffer&)> onBuffer) = 0;
    /// A smoothed level from 0 to 1, on the main thread, at most every 0.05 seconds.
    virtual void setOnLevel(std::function<void(float)> onLevel) = 0;
    virtual void setOnConfigurationChange(std::function<void(ConfigurationChange)> onChange) = 0;
    /// The input to use; none means the system's default.
    virtual void setPreferredDeviceUID(std::optional<std::string> uid) = 0;

    /// Opens the microphone. A recording of before that is still held is discarded. No effect while
    /// recording. After a failure the recorder may hold a file.
    virtual std::expected<void, AudioRecorderError> start(WriteToDisk file) = 0;
    /// Closes the microphone and the file. No effect while idle.
    virtual void stop() = 0;
    /// How long the present recording runs, in seconds; 0 while idle.
    virtual double duration() const = 0;

    /// The present or last recording, until it is discarded or detached; null for none.
    virtual const RecordingFile* recording() const = 0;
    /// Deletes it. Harmless if there is none.
    virtual void discardRecording() = 0;
    /// Hands it over to the caller, who answers for it from then on.
    virtual std::optional<RecordingFile> detachRecording() = 0;
};

} // namespace querlin
