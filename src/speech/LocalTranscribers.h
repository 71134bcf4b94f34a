#pragma once

#include "foundation/Runtime.h"
#include "speech/RecognitionSession.h"
#include "speech/TranscriberFactory.h"

#include <string>
#include <string_view>

namespace querlin {

/// The user's language as a BCP 47 tag, from the values of LC_ALL, LC_MESSAGES and LANG (POSIX.1-2017, 8.2:
/// the first that isn't empty counts): "de_AT.UTF-8" -> "de-AT". German where they name none ("C").
std::string systemLocale(std::string_view lcAll, std::string_view lcMessages, std::string_view lang);

/// Makes transcribers over the machine's two recognisers.
class LocalTranscribers final : public TranscriberFactory {
public:
    /// The engines outlive this and all transcribers.
    LocalTranscribers(Runtime runtime, SpeechEngine& classic, SpeechEngine& streaming) :
        runtime_(runtime), classic_(classic), streaming_(streaming) {}

    bool hasStreaming() const override;
    std::shared_ptr<StreamingTranscriber> make(TranscriptionEngine engine) override;
    std::string locale(DictationLanguage language) const override;

private:
    Runtime runtime_;
    SpeechEngine& classic_;
    SpeechEngine& streaming_;
};

} // namespace querlin
