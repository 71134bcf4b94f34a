#include "dictation/Delivery.h"

#include "state/DiagnosticsLog.h"

namespace querlin {

using Kind = DeliveryResult::Kind;

namespace {

constexpr std::string_view soundOnly = "(nur Tonaufnahme – die Spracherkennung ist ausgefallen)";

} // namespace

Task<DeliveryResult> Delivery::deliver(std::shared_ptr<DictationRun> run) {
    DeliveryResult result{Kind::rescued, {}};
    if (run->rescueReason) {
        rescue(*run, *run->rescueReason);
        co_return result;
    }
    const auto turn = co_await turn_.lock();
    const auto outcome = co_await parts_.inserter.insert(run->text);
    if (!outcome && run->text.empty()) {
        run->discardRecording();
        result = {Kind::failed, std::string(description(outcome.error()))};
    } else if (!outcome) {
        rescue(*run, description(outcome.error()));
    } else if (*outcome == TextInserter::Outcome::notInserted) {
        rescue(*run, "Der Text kam im Zielfeld nicht an");
    } else {
        if (*outcome == TextInserter::Outcome::unconfirmed)
            DiagnosticsLog::trace("insert", "Einfügen nicht überprüfbar.");
        book(*run);
        result.kind = Kind::delivered;
    }
    co_return result;
}

void Delivery::book(DictationRun& run) {
    const auto& settings = parts_.settings;
    parts_.statistics.record(run.text, run.recordingSeconds);
    if (settings.historyEnabled.get()) {
        const bool keepsAudio = settings.historyKeepAudio.get() && run.recording;
        parts_.history.record(run.text, run.context.appName, run.engineName,
                              keepsAudio ? std::optional(run.recording->audio()) : std::nullopt);
    }
    if (settings.learnFromCorrections.get()) parts_.correctionWatcher.watch(run.text, run.context.appName);
    if (run.wasInterrupted)
        parts_.rescue.keepIncomplete(run.text, std::exchange(run.recording, std::nullopt));
    run.discardRecording();
    play(FeedbackSound::success);
}

Task<DeliveryResult> Delivery::deliverLawText(std::string text) {
    const auto turn = co_await turn_.lock();
    const auto outcome = co_await parts_.inserter.insert(text);
    DeliveryResult result{Kind::delivered, {}};
    if (!outcome) {
        result = {Kind::failed, std::string(description(outcome.error()))};
    } else if (*outcome == TextInserter::Outcome::notInserted) {
        rescueLawText(text, "Der Gesetzestext kam im Zielfeld nicht an");
        result.kind = Kind::rescued;
    }
    co_return result;
}

void Delivery::rescueLawText(std::string_view text, std::string_view reason) {
    parts_.rescue.rescue(text, std::nullopt, reason);
}

void Delivery::rescue(DictationRun& run, std::string_view reason) {
    parts_.rescue.rescue(run.text, std::exchange(run.recording, std::nullopt), reason);
    play(FeedbackSound::failure);
}

void Delivery::rescueWhatWasHeard(DictationRun& run, std::string_view reason) {
    if (!run.isCancelled && (!run.partialText.empty() || run.wasInterrupted)) {
        parts_.rescue.rescue(run.partialText.empty() ? soundOnly : run.partialText,
                             std::exchange(run.recording, std::nullopt), reason);
    }
    run.discardRecording();
}

void Delivery::play(FeedbackSound sound) {
    if (parts_.settings.playStopSound.get()) parts_.sounds.play(sound);
}

} // namespace querlin
