#include "desktop/CorrectionWatcher.h"

#include "foundation/Characters.h"
#include "foundation/Graphemes.h"
#include "foundation/TextCase.h"
#include "foundation/Uuid.h"
#include "state/DiagnosticsLog.h"

#include <algorithm>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr std::size_t mostCharacters = 4000;
constexpr std::int64_t mostCharactersByRange = 20000;
constexpr std::size_t fewestWords = 2;
constexpr std::size_t fewestCharacters = 2;

void note(std::string_view text) { DiagnosticsLog::note("learn", text); }
void trace(std::string_view text) { DiagnosticsLog::trace("learn", text); }

std::string compared(std::string_view word) { return nfc(lowercase(word)); }

} // namespace

void CorrectionWatcher::watch(std::string_view insertedText, std::string_view appName) {
    stop();
    if (!permissions_.isAccessibilityTrusted()) {
        note("Eingabefelder nicht zugänglich – keine Beobachtung.");
        return;
    }
    if (splitAtWhitespace(insertedText).size() < fewestWords) return;
    auto field = accessibility_.focusedField();
    if (!field) {
        note("Kein fokussiertes Feld gefunden – keine Beobachtung.");
        return;
    }
    const auto record = (*field)->look(FieldLook::contents);
    auto text = record ? textOf(**field, *record) : std::nullopt;
    if (!text) {
        note(fmt::format("Feldinhalt in {} nicht lesbar (Rolle {}) – keine Beobachtung.", appName,
                         name(record ? record->role : FieldRole::other)));
        return;
    }
    field_ = std::move(*field);
    insertedText_ = insertedText;
    baseline_ = std::move(*text);
    appName_ = appName;
    alreadyReported_.clear();
    deadline_ = runtime_.clock.instant() + window;
    timer_.emplace(runtime_.mainQueue, interval, [this] { tick(); });
    trace("Beobachte Korrekturen für 25 s.");
}

void CorrectionWatcher::stop() {
    timer_.reset();
    field_.reset();
    insertedText_.clear();
    baseline_.clear();
    pending_.reset();
}

std::optional<std::string> CorrectionWatcher::textOf(Field& field, const FieldRecord& record) {
    auto text = record.text ? std::optional(*record.text) : textByRange(field, record);
    if (!text || graphemeCount(*text) > mostCharacters) return std::nullopt;
    return text;
}

std::optional<std::string> CorrectionWatcher::textByRange(Field& field, const FieldRecord& record) {
    if (!record.length || *record.length < 1 || *record.length > mostCharactersByRange) return std::nullopt;
    auto text = field.text({0, *record.length});
    return text ? std::optional(std::move(*text)) : std::nullopt;
}

void CorrectionWatcher::tick() {
    if (!field_ || runtime_.clock.instant() >= deadline_) {
        stop();
        return;
    }
    const auto record = field_->look(FieldLook::contents);
    if (const auto text = record ? textOf(*field_, *record) : std::nullopt) {
        look(*text);
    } else {
        stop();
    }
}

void CorrectionWatcher::look(const std::string& text) {
    if (canonicallyEqual(text, baseline_)) {
        pending_.reset();
        return;
    }
    const auto correction = singleChange(baseline_, text);
    if (!correction) {
        trace("Änderung im Feld, aber keine Ein-Wort-Korrektur.");
        pending_.reset();
        return;
    }
    const auto key = correction->recognized() + "→" + correction->corrected;
    if (alreadyReported_.contains(key)) return;
    if (const auto reason = objection(*correction)) {
        trace(fmt::format("Korrektur verworfen: {}", *reason));
        pending_.reset();
    } else if (pending_ == correction) {
        pending_.reset();
        propose(*correction, key);
    } else {
        pending_ = correction;
        trace("Korrektur vorgemerkt, warte auf Bestätigung.");
    }
}

std::optional<std::string> CorrectionWatcher::objection(const Correction& correction) const {
    std::set<std::string> dictated;
    for (const auto& word : wordsOf(insertedText_)) dictated.insert(compared(word));
    const auto isDictated = [&](const std::string& word) { return dictated.contains(compared(word)); };
    if (!std::ranges::all_of(correction.recognizedWords, isDictated)) return "stammt nicht aus dem Diktat.";
    if (graphemeCount(correction.corrected) < fewestCharacters) return "Ergebnis zu kurz.";
    return std::nullopt;
}

void CorrectionWatcher::propose(const Correction& correction, const std::string& key) {
    alreadyReported_.insert(key);
    note("Korrektur erkannt.");
    if (onSuggestion_) onSuggestion_({newUuid(), correction.recognized(), correction.corrected, appName_});
}

} // namespace querlin
