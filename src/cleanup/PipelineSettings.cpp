#include "cleanup/PipelineSettings.h"

#include "state/AppSettings.h"

namespace querlin {

PipelineSettings PipelineSettings::of(const AppSettings& settings) {
    return {.commandsEnabled = settings.dictationCommandsEnabled.get(),
            .cleanupMode = settings.cleanupMode.get(),
            .textBlocks = settings.textBlocks.get()};
}

} // namespace querlin
