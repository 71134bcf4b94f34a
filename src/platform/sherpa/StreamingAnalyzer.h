#pragma once

#include "platform/recogniser/RecogniserProcess.h"

#include "foundation/SerialQueue.h"
#include "speech/SpeechAnalyzer.h"

#include <memory>
#include <mutex>

namespace querlin {

/// One analysis: a session of the helper, begun when the words are known.
class StreamingAnalyzer final : public SpeechAnalyzer {
public:
    /// Without a process `prepare` fails with this reason. `ends` is where the end is told before there is
    /// a session.
    StreamingAnalyzer(std::shared_ptr<RecogniserProcess> process, std::string reason,
                      std::shared_ptr<SerialQueue> ends, SpeechAnalysisObserver observer);
    ~StreamingAnalyzer() override { cancelAndFinishNow(); }

    std::expected<std::optional<AudioFormat>, std::string>
    prepare(const std::vector<std::string>& contextualStrings) override;
    std::expected<void, std::string> start() override;
    void analyze(std::vector<float> samples) override;
    void finalizeAndFinishThroughEndOfInput() override;
    void cancelAndFinishNow() override;

private:
    class Results;

    std::shared_ptr<RecogniserSession> session();
    void endWithoutSession(std::expected<void, std::string> result);

    std::shared_ptr<RecogniserProcess> process_;
    std::string reason_;
    std::shared_ptr<SerialQueue> ends_;
    std::shared_ptr<Results> results_;
    std::mutex lock_;
    std::shared_ptr<RecogniserSession> session_;
    bool isOver_ = false; ///< it ended before there was a session
};

} // namespace querlin
