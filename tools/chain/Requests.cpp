#include "chain/Requests.h"

#include "cleanup/LocalModelEnhancer.h"
#include "cleanup/RuleBasedEnhancer.h"
#include "cleanup/TextPipeline.h"
#include "desktop/Correction.h"
#include "foundation/IsoDate.h"
#include "foundation/Json.h"
#include "legal/LegalLookup.h"
#include "textchain/DictationCommands.h"
#include "textchain/DictationPreprocessor.h"
#include "textchain/GermanNumberWords.h"
#include "textchain/LegalFormatting.h"
#include "textchain/SpokenLawReference.h"
#include "textchain/TextBlockExpander.h"
#include "textchain/Tokenizer.h"
#include "textchain/Transcript.h"
#include "textchain/URLFormatting.h"

#include <algorithm>
#include <array>

namespace querlin {

namespace {

using Members = JsonValue::Object;

class Options {
public:
    explicit Options(const JsonValue* object) : object_(object) {}

    bool flag(std::string_view name, bool fallback) const {
        const auto* value = find(name);
        return value ? value->boolean().value_or(fallback) : fallback;
    }
    std::string text(std::string_view name) const { return textOf(find(name)); }
    std::vector<std::string> texts(std::string_view name) const {
        std::vector<std::string> result;
        for (const auto& element : elements(name)) result.push_back(textOf(&element));
        return result;
    }
    std::vector<TextBlock> blocks() const {
        if (!find("blocks")) return TextBlock::builtIn();
        std::vector<TextBlock> result;
        for (const auto& block : elements("blocks")) {
            result.push_back({textOf(block.member("name")), textOf(block.member("content"))});
        }
        return result;
    }
    Date now() const { return parseIsoDate(text("now")).value_or(Date()); }

private:
    static std::string textOf(const JsonValue* value) {
        return value && value->string() ? *value->string() : std::string();
    }
    const JsonValue* find(std::string_view name) const { return object_ ? object_->member(name) : nullptr; }
    JsonValue::Array elements(std::string_view name) const {
        const auto* value = find(name);
        return value && value->array() ? *value->array() : JsonValue::Array();
    }

    const JsonValue* object_;
};

JsonValue listOf(const std::vector<std::string>& texts) {
    return JsonValue::Array(texts.begin(), texts.end());
}

Members chain(std::string_view text, const Options& options) {
    PipelineRequest request;
    request.style.style = fromRawValue<WritingStyle>(options.text("style")).value_or(WritingStyle::aktenstil);
    request.style.compactText = options.flag("compact", false);
    request.settings.cleanupMode =
        fromRawValue<CleanupMode>(options.text("mode")).value_or(CleanupMode::rules);
    request.settings.commandsEnabled = options.flag("commands", true);
    request.settings.textBlocks = options.blocks();
    request.now = options.now();
    NoLaws none;
    const auto outcome = TextPipeline::runWithoutModel(text, request, none);
    return {{"text", outcome.text}, {"discardedEverything", outcome.discardedEverything}};
}

Members commands(std::string_view text, const Options& options) {
    using DictationCommands::Mode;
    const auto outcome =
        DictationCommands::apply(text, options.text("mode") == "compact" ? Mode::compact : Mode::prose);
    return {{"text", outcome.text},
            {"discardedEverything", outcome.discardedEverything},
            {"appliedCommands", listOf(outcome.appliedCommands)}};
}

Members blocks(std::string_view text, const Options& options) {
    const auto outcome = TextBlockExpander::expand(text, options.blocks(), options.now());
    return {{"text", outcome.text}, {"usedBlocks", listOf(outcome.usedBlocks)}};
}

Members address(std::string_view text, const Options& options) {
    using namespace URLFormatting;
    const bool isAddress =
        looksLikeAddress(text, options.flag("strict", true) ? AddressTest::strict : AddressTest::lenient);
    return {{"isAddress", isAddress}, {"text", isAddress ? compactWholeText(text) : compactURLs(text)}};
}

Members tokens(std::string_view text, const Options& /*options*/) {
    JsonValue::Array list;
    const Tokenizer::Split split(text);
    for (const auto& [raw, normalized] : split.tokens())
        list.emplace_back(JsonValue::Array{std::string(raw), std::string(normalized)});
    return {{"tokens", list}};
}

Members number(std::string_view /*text*/, const Options& options) {
    const auto words = options.texts("words");
    const std::vector<std::string_view> views(words.begin(), words.end());
    const auto digits = GermanNumberWords::digits(views);
    return {{"digits", digits ? JsonValue(*digits) : JsonValue()}};
}

Members correction(std::string_view text, const Options& options) {
    const auto change = singleChange(text, options.text("new"));
    return {{"recognizedWords", change ? listOf(change->recognizedWords) : JsonValue()},
            {"corrected", change ? JsonValue(change->corrected) : JsonValue()}};
}

/// A stage that maps a text to a text.
template<auto stage>
Members plain(std::string_view text, const Options& /*options*/) {
    return {{"text", stage(text)}};
}

std::string rulesWithOptions(std::string_view text, const Options& options) {
    return RuleBasedEnhancer::clean(text, {.commandsApplied = options.flag("commandsApplied", false)});
}

struct Stage {
    std::string_view name;
    Members (*run)(std::string_view, const Options&);
};

constexpr auto stages = std::to_array<Stage>({
    {"chain", chain},
    {"normalize", plain<normalizedTranscript>},
    {"commands", commands},
    {"punctuation", plain<DictationPreprocessor::applySpokenPunctuation>},
    {"rules",
     [](std::string_view text, const Options& options) -> Members {
         return {{"text", rulesWithOptions(text, options)}};
     }},
    {"blocks", blocks},
    {"citations", plain<SpokenLawReference::normalizeReferences>},
    {"legal", plain<LegalFormatting::apply>},
    {"address", address},
    {"tokens", tokens},
    {"number", number},
    {"words",
     [](std::string_view text, const Options&) -> Members { return {{"words", listOf(wordsOf(text))}}; }},
    {"correction", correction},
    {"stripWrapping", plain<LocalModelEnhancer::stripWrapping>},
});

} // namespace

std::string answer(std::string_view request) {
    const auto parsed = Json::parse(request);
    if (!parsed) return Json::compact(Members{{"id", JsonValue()}, {"error", parsed.error().description}});
    const auto* id = parsed->member("id");
    Members result{{"id", id ? *id : JsonValue()}};
    const auto* name = parsed->member("stage");
    const auto* text = parsed->member("text");
    const auto* stage = std::ranges::find_if(
        stages, [name](const Stage& row) { return name && name->string() && row.name == *name->string(); });
    if (stage == stages.end()) {
        result.emplace_back("error", "no such stage");
    } else {
        const auto words = text && text->string() ? *text->string() : std::string();
        for (auto& member : stage->run(words, Options(parsed->member("options"))))
            result.push_back(std::move(member));
    }
    return Json::compact(result);
}

} // namespace querlin
