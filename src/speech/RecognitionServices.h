#pragma once

#include "speech/StreamingTranscriber.h"
#include "state/RecognitionChoice.h"

#include <compare>
#include <memory>
#include <string>
#include <vector>

namespace querlin {

/// The version by which the platform says which recognisers it has.
struct SystemVersion {
    int major = 0;
    int minor = 0;
    int patch = 0;

    auto operator<=>(const SystemVersion&) const = default;
};

/// From this version on the streaming recogniser can be had.
inline constexpr SystemVersion streamingRecogniserVersion{26, 0, 0};

/// Makes the recogniser of a dictation.
class TranscriberFactory {
public:
    virtual ~TranscriberFactory() = default;
    virtual SystemVersion systemVersion() const = 0;
    virtual std::shared_ptr<StreamingTranscriber> make(TranscriptionEngine engine) = 0;
    /// The locale of a language setting: "de-DE"; for `system` that of the user.
    virtual std::string locale(DictationLanguage language) const = 0;
};

/// The words that a recogniser is to favour.
class VocabularyProvider {
public:
    virtual ~VocabularyProvider() = default;
    /// The user's terms and those of the field, at most `limit`.
    virtual std::vector<std::string> contextualStrings(const std::vector<std::string>& userTerms,
                                                       std::int64_t limit) = 0;
};

/// A microphone, as lists show it.
struct AudioInputDevice {
    std::string uid;
    std::string name;
    std::uint32_t deviceID = 0;

    bool operator==(const AudioInputDevice&) const = default;
};

class AudioDevices {
public:
    virtual ~AudioDevices() = default;
    /// All inputs, sorted by name.
    virtual std::vector<AudioInputDevice> inputs() = 0;
};

} // namespace querlin
