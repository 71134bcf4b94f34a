#pragma once

#include "foundation/RunLoop.h"
#include "foundation/TaskGroup.h"
#include "foundation/ThreadPool.h"
#include "platform/av/SwrConverter.h"
#include "platform/pocketsphinx/ClassicEngine.h"
#include "platform/sherpa/StreamingEngine.h"
#include "speech/LocalTranscribers.h"

#include <string>

namespace querlin::bench {

/// Both recognisers as the program has them.
struct Services {
    RunLoop loop;
    SystemClock clock;
    ThreadPool pool{2};
    ClassicEngine classic{{.model = QUERLIN_STARTER_MODEL, .makeConverter = makeSwrConverter}};
    StreamingEngine streaming{{.models = QUERLIN_STREAMING_MODELS,
                               .libraries = {StreamingEngine::libraryOfBuild()},
                               .makeConverter = makeSwrConverter}};
    LocalTranscribers transcribers{{loop, clock, pool}, classic, streaming};

    std::shared_ptr<StreamingTranscriber> begin(TranscriptionEngine engine) {
        auto transcriber = transcribers.make(engine);
        if (!transcriber->begin("de-DE")) throw std::runtime_error("no recogniser");
        return transcriber;
    }
    std::string finish(StreamingTranscriber& transcriber) {
        std::string text;
        tasks.start(finishing(transcriber, text));
        loop.run();
        return text;
    }

private:
    Task<> finishing(StreamingTranscriber& transcriber, std::string& text) {
        auto result = co_await transcriber.finish();
        text = result.value_or("");
        loop.quit();
    }

    TaskGroup tasks;
};

} // namespace querlin::bench
