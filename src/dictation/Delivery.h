#pragma once

#include "desktop/CorrectionWatcher.h"
#include "desktop/SoundPlayer.h"
#include "desktop/TextInserter.h"
#include "dictation/DictationRescue.h"
#include "dictation/DictationRun.h"
#include "foundation/TaskMutex.h"
#include "state/AppSettings.h"
#include "state/DictationHistory.h"
#include "state/UsageStatistics.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace querlin {

/// What became of a text.
struct DeliveryResult {
    enum class Kind : std::uint8_t {
        delivered, ///< in the target, as far as anybody can tell
        rescued,
        failed ///< nothing was pasted, nothing rescued
    };

    Kind kind = Kind::failed;
    /// Of `failed` alone: why, in German.
    std::string reason;
};

/// Whom a delivery works with; all of them outlive it.
struct DeliveryParts {
    AppSettings& settings;
    UsageStatistics& statistics;
    DictationHistory& history;
    DictationRescue& rescue;
    TextInserter& inserter;
    CorrectionWatcher& correctionWatcher;
    SoundPlayer& sounds;
};

/// The last step of a text: into the target, or into safety where the target doesn't take it. What was
/// delivered is booked (statistics, history, the watch for corrections). It knows no phases. Main thread.
class Delivery {
public:
    Delivery(MainQueue& queue, DeliveryParts parts) : parts_(parts), turn_(queue) {}

    /// Ends with the run's recording kept, rescued or discarded. An empty text fails where a text would have
    /// been rescued for the lack of a permission.
    Task<DeliveryResult> deliver(std::shared_ptr<DictationRun> run);

    /// Pastes a law text, which is booked nowhere. It fails without the permission.
    Task<DeliveryResult> deliverLawText(std::string text);
    void rescueLawText(std::string_view text, std::string_view reason);

    /// The run's text, with its recording and a sound. `reason` is a German clause.
    void rescue(DictationRun& run, std::string_view reason);
    /// A run that has no transcript: what was heard so far, or the recording of a recogniser that gave out. A
    /// run without either leaves nothing.
    void rescueWhatWasHeard(DictationRun& run, std::string_view reason);

    /// One of the two sounds at the end, if the user wants them.
    void play(FeedbackSound sound);

private:
    void book(DictationRun& run);

    DeliveryParts parts_;
    /// Two insertions at once would mix up the user's clipboard.
    TaskMutex turn_;
};

} // namespace querlin
