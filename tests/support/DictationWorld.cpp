#include "support/DictationWorld.h"

#include "foundation/Waiting.h"

#include <stdexcept>

namespace querlin {

// FakeTranscriber

std::expected<void, TranscriptionError> FakeTranscriber::begin(const std::string& /*locale*/) {
    if (script_.beginError) return std::unexpected(*script_.beginError);
    return {};
}

Task<std::expected<std::string, TranscriptionError>> FakeTranscriber::finish() {
    timer_ = queue_.after(script_.delay, [ended = cancelled_.sender()] { ended.send(false); });
    if (co_await cancelled_) co_return std::string();
    if (const auto* text = std::get_if<std::string>(&script_.result)) {
        transcripts_.push_back(*text);
        co_return *text;
    }
    auto error = std::get<TranscriptionError>(script_.result);
    co_return std::unexpected(std::move(error));
}

void FakeTranscriber::cancel() {
    isCancelled = true;
    cancelled_.sender().send(true);
}

// FakeInserter

Task<InsertResult> FakeInserter::insert(std::string text) {
    const auto result = next;
    ++underWay;
    mostAtOnce = std::max(mostAtOnce, underWay);
    struct Leave {
        int& count;
        ~Leave() { --count; }
    } const leave{underWay};
    if (result && !text.empty()) co_await sleepFor(queue_, delay);
    if (result && *result == Outcome::notInserted) {
        clipboard = text;
    } else if (result) {
        delivered.push_back(text);
        onDelivered();
    }
    co_return result;
}

// FakeLaws

std::optional<LegalSection> FakeLaws::section(std::string_view id, std::string_view law) {
    if (isBroken) throw std::runtime_error("kaputt");
    if (id != "1814" || law != "BGB") return std::nullopt;
    LegalSection section;
    section.id = "1814";
    section.label = "§ 1814";
    section.title = "Muster";
    section.text = "(1) Der Punkt die die Betreuung trägt, folgt aus Paragraph 7 Absatz 1.\n\n(2) Zweiter Satz, 3. März 2024";
    return section;
}

std::optional<LegalHit> FakeLaws::sectionInAnyLaw(std::string_view id) {
    auto found = section(id, "BGB");
    return found ? std::optional(LegalHit{"BGB", std::move(*found)}) : std::nullopt;
}

// FakeServices

std::shared_ptr<StreamingTranscriber> FakeServices::make(TranscriptionEngine engine) {
    madeEngines.push_back(engine);
    transcriber = std::make_shared<FakeTranscriber>(queue_, script, transcripts);
    return transcriber;
}

// FakeSurroundings

DictationCollaborators FakeSurroundings::collaborators() {
    return {.settings = settings,
            .statistics = statistics,
            .history = history,
            .rescue = rescue,
            .notifier = notifier,
            .windows = windows,
            .sounds = services,
            .hotkey = hotkey,
            .permissions = permissions,
            .contextDetector = contextDetector,
            .inserter = inserter,
            .correctionWatcher = watcher,
            .systemSignals = signals,
            .recorder = recorder,
            .audioDevices = devices,
            .transcribers = services,
            .vocabulary = vocabulary,
            .pipeline = pipeline};
}

// DictationWorld

DictationWorld::DictationWorld() : FakeSurroundings(time.runtime(), folder.path()) {
    controller.start();
    time.settle();
}

void DictationWorld::key(HoldKeyEvent::Kind kind) {
    holdKey.send(kind);
    time.settle();
}

void DictationWorld::press() {
    if (hotkey.isHotkeyDown()) release();
    key(HoldKeyEvent::Kind::pressed);
    wait(seconds(0.15));
}

void DictationWorld::release() { key(HoldKeyEvent::Kind::released); }

void DictationWorld::hold(Duration span) {
    if (hotkey.isHotkeyDown()) release();
    key(HoldKeyEvent::Kind::pressed);
    wait(span);
    release();
}

void DictationWorld::dictate(std::string transcript) {
    services.script.result = std::move(transcript);
    hold(seconds(2));
    wait(seconds(10));
}

std::vector<std::string> DictationWorld::rescuedTexts() const {
    std::vector<std::string> texts;
    for (const auto& name : fileNames(rescueFolder.path())) {
        if (name.ends_with(".txt")) texts.push_back(contentOf(rescueFolder.path() / name));
    }
    return texts;
}

std::size_t DictationWorld::rescuedRecordings() const {
    const auto names = fileNames(rescueFolder.path());
    return static_cast<std::size_t>(std::ranges::count_if(names, [](const auto& name) { return name.ends_with(".caf"); }));
}

} // namespace querlin
