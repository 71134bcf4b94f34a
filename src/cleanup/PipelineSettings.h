#pragma once

#include "state/TextBlock.h"
#include "state/WritingStyle.h"

#include <vector>

namespace querlin {

class AppSettings;

/// The settings that decide what becomes of a text, as they were when its dictation began.
struct PipelineSettings {
    bool commandsEnabled = true;
    CleanupMode cleanupMode = CleanupMode::rules;
    std::vector<TextBlock> textBlocks;

    static PipelineSettings of(const AppSettings& settings);
};

} // namespace querlin
