#pragma once

#include "desktop/TextInserter.h"
#include "dictation/Notifier.h"
#include "dictation/RescueFolder.h"

#include <optional>
#include <string_view>

namespace querlin {

/// Saves a text that could not be delivered: onto the clipboard first, then into the rescue folder
/// with its recording, and notifies the user. Main thread.
class DictationRescue {
public:
    DictationRescue(RescueFolder& folder, TextInserter& inserter, Notifier& notifier) :
        folder_(folder), inserter_(inserter), notifier_(notifier) {}

    /// `reason` is a German clause without a full stop. Whatever the disk does, the text is on the
    /// clipboard and the user is notified.
    RescueFolder::Result rescue(std::string_view text, std::optional<RecordingFile> recording,
                                std::string_view reason);

    /// For a text that was delivered although the recogniser gave out on the way: text and recording go into
    /// the folder, and the user is asked to look at it again.
    void keepIncomplete(std::string_view text, std::optional<RecordingFile> recording);

    bool hasEntries() const { return folder_.hasEntries(); }

private:
    RescueFolder& folder_;
    TextInserter& inserter_;
    Notifier& notifier_;
};

/// What rescues have in common, whoever makes them: the log line and the message to the user.
namespace RescueReport {

/// "⟨reason⟩ – ⟨n⟩ Wörter gerettet → ⟨file⟩"; the words themselves stay out of the log.
void writeToLog(std::string_view text, std::string_view reason, const RescueFolder::Result& result);
/// "⟨reason⟩. ⟨whereabouts⟩"; nothing of the text, since it may be read on a locked screen.
void notify(Notifier& notifier, std::string_view reason, std::string_view whereabouts);

} // namespace RescueReport

} // namespace querlin
