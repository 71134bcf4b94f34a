#pragma once

#include "speech/AudioBuffer.h"

#include <expected>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace querlin {

/// A recording being written. One thread at a time; its end closes the file.
class AudioFileWriter {
public:
    virtual ~AudioFileWriter() = default;
    /// Appends a buffer of the file's format. What was written before stays readable at any moment, also
    /// if the process dies. The error is a German text.
    virtual std::expected<void, std::string> write(const AudioBuffer& buffer) = 0;
};

/// Makes recordings. A port.
class AudioFileCreator {
public:
    virtual ~AudioFileCreator() = default;
    /// A new Core Audio Format file of 32-bit floats, readable by its owner alone. The error is a German
    /// text.
    virtual std::expected<std::unique_ptr<AudioFileWriter>, std::string>
    create(const std::filesystem::path& path, AudioFormat format) = 0;
};

/// A recording that was read.
struct DecodedAudio {
    AudioFormat format;
    std::vector<float> samples; ///< the channels of a frame side by side
};

/// Reads recordings of any common kind (CAF, MPEG-4 audio, WAV). A port; any thread.
class AudioFileReader {
public:
    virtual ~AudioFileReader() = default;
    /// The whole sound, in the wanted format. A file that was cut off gives what is there; one without
    /// a frame of sound is an error. The error is a German text.
    virtual std::expected<DecodedAudio, std::string> read(const std::filesystem::path& path,
                                                          AudioFormat wanted) = 0;
};

} // namespace querlin
