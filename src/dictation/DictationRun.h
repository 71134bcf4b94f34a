#pragma once

#include "cleanup/EffectiveStyle.h"
#include "cleanup/PipelineSettings.h"
#include "desktop/DictationContext.h"
#include "desktop/SystemSignals.h"
#include "speech/StreamingTranscriber.h"
#include "state/RecordingFolder.h"

#include <memory>
#include <optional>
#include <string>

namespace querlin {

/// One dictation from key press to delivered text, with everything that belongs to it alone. A run
/// never touches the things of another.
struct DictationRun {
    // Fixed when it begins
    DictationContext context;
    EffectiveStyle style;
    PipelineSettings settings;
    /// The hold key began it, so it may turn out to be part of a shortcut.
    bool isHeldByKey = false;

    // While recording
    std::shared_ptr<StreamingTranscriber> transcriber;
    std::string partialText;
    /// The user sees that it runs.
    bool isShown = false;

    // After the key's release
    std::optional<RecordingFile> recording;
    double recordingSeconds = 0;
    /// The recogniser gave out before it had heard everything.
    bool wasInterrupted = false;
    /// The best text there is: the transcript, then what the stages made of it.
    std::string text;
    std::string engineName;

    /// When set, the finished text goes to the rescue folder under this reason and is not pasted.
    std::optional<std::string> rescueReason;
    /// Keeps the machine awake until the text is safe.
    SystemHold hold;
    /// The user has given it up. What it still finds to deliver it delivers.
    bool isCancelled = false;

    void discardRecording() {
        if (recording) recording->discard();
        recording.reset();
    }
};

} // namespace querlin
