#pragma once

#include "dictation/Notifier.h"
#include "dictation/RescueFolder.h"

namespace querlin::CrashRecovery {

/// Moves the recordings that dead processes have left, with the text that had been recognised,
/// into the rescue folder and notifies the user. The clipboard is left alone: whoever starts the program
/// may have something of today on it. Recordings of living processes are not touched. What can't be
/// moved stays for the next start. Gives the number of texts that are in the rescue folder now.
std::size_t rescueLeftBehind(const RecordingFolder& recordings, RescueFolder& rescueFolder,
                             Notifier& notifier);

} // namespace querlin::CrashRecovery
