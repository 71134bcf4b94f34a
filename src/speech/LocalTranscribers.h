#pragma once

#include "foundation/Runtime.h"
#include "speech/AudioConverter.h"
#include "speech/SpeechAnalyzer.h"
#include "speech/SpeechRecognizer.h"
#include "speech/TranscriberFactory.h"

#include <string>
#include <string_view>

namespace querlin {

/// The user's language as a BCP 47 tag, from the values of LC_ALL, LC_MESSAGES and LANG (POSIX.1-2017, 8.2:
/// the first that isn't empty counts): "de_AT.UTF-8" -> "de-AT". German where they name none ("C").
std::string systemLocale(std::string_view lcAll, std::string_view lcMessages, std::string_view lang);

/// Makes transcribers over the machine's two recognition services.
class LocalTranscribers final : public TranscriberFactory {
public:
    /// The services outlive this and all transcribers.
    LocalTranscribers(Runtime runtime, SpeechRecognitionService& classic, SpeechAnalysisService& streaming,
                      MakeAudioConverter makeConverter) :
        runtime_(runtime),
        classic_(classic),
        streaming_(streaming),
        makeConverter_(std::move(makeConverter)) {}

    /// 26.0.0 where the streaming service is here, else 14.0.0.
    SystemVersion systemVersion() const override;
    std::shared_ptr<StreamingTranscriber> make(TranscriptionEngine engine) override;
    std::string locale(DictationLanguage language) const override;

private:
    Runtime runtime_;
    SpeechRecognitionService& classic_;
    SpeechAnalysisService& streaming_;
    MakeAudioConverter makeConverter_;
};

} // namespace querlin
