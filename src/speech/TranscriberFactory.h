#pragma once

#include "speech/StreamingTranscriber.h"
#include "state/RecognitionChoice.h"

#include <memory>
#include <string>

namespace querlin {

/// Makes the recogniser of a dictation. Main thread.
class TranscriberFactory {
public:
    virtual ~TranscriberFactory() = default;
    /// Whether the streaming recogniser is here, with a model.
    virtual bool hasStreaming() const = 0;
    virtual std::shared_ptr<StreamingTranscriber> make(TranscriptionEngine engine) = 0;
    /// The locale of a language setting: "de-DE"; for `system` that of the user.
    virtual std::string locale(DictationLanguage language) const = 0;
};

} // namespace querlin
