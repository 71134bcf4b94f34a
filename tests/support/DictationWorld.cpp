#include "support/DictationWorld.h"

#include "foundation/Waiting.h"

#include <stdexcept>

namespace querlin {

// FakeTranscriber

std::expected<void, TranscriptionError> FakeTranscriber::begin(const std::string& locale) {
    begunLocale = locale;
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

// Stages

std::string FakeStages::mark(std::string_view text, std::string_view sign) const {
    if (lawStageThrows && sign == "·l") throw std::runtime_error("kaputt");
    return marks ? std::string(text) + std::string(sign) : std::string(text);
}

std::optional<LegalSection> FakeLaws::section(std::string_view id, std::string_view law) {
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

DictationCommands::Outcome FakeStages::applyCommands(std::string_view text, DictationCommands::Mode mode) {
    if (text.find("alles verwerfen") != std::string_view::npos) return {std::string(text), true, {"alles verwerfen"}};
    if (text == "streiche das") return {"", false, {"streiche das"}};
    std::vector<std::string> applied;
    if (text.find("Komma") != std::string_view::npos) applied = {"Komma", "Punkt"};
    return {mark(text, mode == DictationCommands::Mode::compact ? "·C" : "·c"), false, applied};
}

TextBlockExpander::Outcome FakeStages::expandBlocks(std::string_view text, std::span<const TextBlock>, Date) {
    if (text.find("Baustein") == std::string_view::npos) return {std::string(text), {}};
    return {mark(text, "·b"), {"Anhörung", "Grußformel"}};
}

std::string FakeStages::compactAddresses(std::string_view text, URLFormatting::AddressTest test) {
    return mark(text, test == URLFormatting::AddressTest::strict ? "·u" : "·U");
}

Task<std::expected<std::string, EnhancementError>> FakeEnhancer::enhance(std::string text, DictationLanguage, WritingStyle,
                                                                         TextTreatment treatment) {
    treatments.push_back(treatment);
    auto work = [this, text] { return stages_.marks ? text + "·r" : text; };
    auto cleaned = co_await background(runtime_, std::move(work));
    if (fails) {
        EnhancementError error{"Regelfehler"};
        co_return std::unexpected(std::move(error));
    }
    co_return cleaned;
}

// FakeLanguageModel

namespace {

class FakeSession final : public LanguageModelSession {
public:
    FakeSession(const FakeLanguageModel& model, MainQueue& queue, std::string mark) :
        queue_(queue), delay_(model.delay), fault_(model.fault), mark_(std::move(mark)) {}
    void prewarm() override {}
    Task<std::expected<std::string, EnhancementError>> respond(std::string prompt, double) override {
        co_await sleepFor(queue_, delay_);
        if (fault_) {
            EnhancementError error{*fault_};
            co_return std::unexpected(std::move(error));
        }
        const auto start = prompt.find('\n') + 1;
        co_return prompt.substr(start, prompt.rfind('\n') - start) + mark_;
    }

private:
    MainQueue& queue_;
    Duration delay_;
    std::optional<std::string> fault_;
    std::string mark_;
};

} // namespace

std::unique_ptr<LanguageModelSession> FakeLanguageModel::makeSession(std::string) {
    return std::make_unique<FakeSession>(*this, queue_, stages_.marks ? "·m" : "");
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
            .textStages = work == TextWork::real ? static_cast<TextStages&>(realStages) : stages,
            .ruleBasedEnhancer = rules(),
            .enhancement = coordinator};
}

TextEnhancer& FakeSurroundings::rules() {
    if (work == TextWork::real) return realEnhancer;
    return enhancer;
}

// DictationWorld

DictationWorld::DictationWorld(TextWork textWork) : FakeSurroundings(time.runtime(), folder.path(), textWork) {
    controller.start();
    time.settle();
}

void DictationWorld::press() {
    if (hotkey.isHotkeyDown()) release();
    holdKey.hold(true);
    time.settle();
}

void DictationWorld::release() {
    holdKey.hold(false);
    time.settle();
}

void DictationWorld::hold(Duration span) {
    press();
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
