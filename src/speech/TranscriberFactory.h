#pragma once

#include "speech/StreamingTranscriber.h"
#include "state/RecognitionChoice.h"

#include <compare>
#include <memory>
#include <string>

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

/// Makes the recogniser of a dictation. Main thread.
class TranscriberFactory {
public:
    virtual ~TranscriberFactory() = default;
    virtual SystemVersion systemVersion() const = 0;
    virtual std::shared_ptr<StreamingTranscriber> make(TranscriptionEngine engine) = 0;
    /// The locale of a language setting: "de-DE"; for `system` that of the user.
    virtual std::string locale(DictationLanguage language) const = 0;
};

} // namespace querlin
