#pragma once

#include "app/Machine.h"
#include "legal/LegalCorpus.h"
#include "state/RecognitionChoice.h"
#include "ui/windows/SetupFinding.h"

#include <optional>
#include <string>
#include <vector>

/// What the program needs and how it stands with it, for the user.
namespace querlin::SetupReport {

struct Sources {
    Machine& machine;
    std::filesystem::path models;
    TranscriptionEngine engine;
    const LegalCorpus& corpus;
    std::string hotkey;
    /// What is wrong with the settings' file.
    std::optional<std::string> settingsTrouble;
};

std::vector<SetupFinding> make(const Sources& sources);

} // namespace querlin::SetupReport
