// One stage under random bytes, in clang's libFuzzer: the first byte picks options, the rest is the
// text. The environment variable QUERLIN_FUZZ_STAGE names the stage.

#include "ReaderStages.h"

#include "cleanup/LocalModelEnhancer.h"
#include "cleanup/RuleBasedEnhancer.h"
#include "cleanup/TextPipeline.h"
#include "desktop/Correction.h"
#include "foundation/Graphemes.h"
#include "foundation/Pattern.h"
#include "foundation/Trimming.h"
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
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace querlin {
namespace {

namespace Stage {

void graphemes(std::string_view text, unsigned) {
    std::size_t count = 0;
    std::string_view last;
    for (const auto character : Graphemes(text)) {
        require(!character.empty(), "a character has bytes");
        last = character;
        ++count;
    }
    require(graphemeCount(text) == count, "characters are counted as they are walked");
    require(lastGrapheme(text) == last, "the last character is where the walk ends");
    if (isLatin1(text)) require(isValidUtf8(text), "what is Latin is well-formed");
}

void tokenizer(std::string_view text, unsigned) {
    const Tokenizer::Split split(text);
    require(Tokenizer::join(split.tokens()) == text, "joined tokens are the text");
    for (const auto& [raw, normalized] : split.tokens()) {
        require(raw.ends_with(Tokenizer::trailingPunctuation(raw)), "trailing punctuation is an end");
        requireValid(normalized);
    }
}

void numbers(std::string_view text, unsigned) {
    const Tokenizer::Split split(text);
    std::vector<std::string_view> words;
    for (const auto& token : split.tokens()) {
        words.push_back(token.normalized);
        (void)GermanNumberWords::parseWord(token.raw);
    }
    const auto digits = GermanNumberWords::digits(words);
    require(!digits || digits->find_first_not_of("0123456789") == std::string::npos, "digits are digits");
}

void commands(std::string_view text, unsigned options) {
    using DictationCommands::Mode;
    const auto mode = (options & 1U) != 0 ? Mode::prose : Mode::compact;
    const auto outcome = DictationCommands::apply(text, mode);
    requireValid(outcome.text);
    require(!outcome.discardedEverything || outcome.text.empty(), "nothing is left of what is discarded");
    require(trimWhitespaceAndNewlines(outcome.text) == outcome.text, "no white space at the ends");
    if (mode == Mode::prose) require(!outcome.text.contains("\n\n\n"), "one empty line at most");
}

void punctuation(std::string_view text, unsigned) {
    const auto result = DictationPreprocessor::applySpokenPunctuation(text);
    requireValid(result);
    require(!result.contains("  "), "no double blanks");
}

void rules(std::string_view text, unsigned options) {
    const auto result = RuleBasedEnhancer::clean(text, {.commandsApplied = (options & 1U) != 0});
    requireValid(result);
    require(trimWhitespaceAndNewlines(result) == result, "no white space at the ends");
}

void blocks(std::string_view text, unsigned options) {
    // The text's own beginning is a name and a content too.
    const auto name = firstGraphemes(text, options);
    const std::vector<TextBlock> list = {
        {"Anhörung", "am {Datum}"}, {"Anhörung kurz", "{uhrzeit}"}, {std::string(name), std::string(text)}};
    const auto outcome = TextBlockExpander::expand(text, list, Date());
    require(outcome.usedBlocks.size() <= text.size(), "no more blocks than words");
    (void)TextBlockExpander::fillPlaceholders(text, Date());
}

void citations(std::string_view text, unsigned) {
    const auto once = SpokenLawReference::normalizeReferences(normalizedTranscript(text));
    requireValid(once);
    if (!once.contains("§")) require(once == normalizedTranscript(text), "without a citation nothing changes");
}

void legal(std::string_view text, unsigned) {
    const auto once = LegalFormatting::normalizeDates(normalizedTranscript(text));
    requireValid(once);
    require(LegalFormatting::normalizeDates(once) == once, "dates in their form stay");
    requireValid(LegalFormatting::normalizeCaseNumbers(text));
}

void addresses(std::string_view text, unsigned options) {
    using namespace URLFormatting;
    const auto test = (options & 1U) != 0 ? AddressTest::strict : AddressTest::lenient;
    const auto valid = normalizedTranscript(text);
    const auto compact = compactURLs(valid);
    requireValid(compact);
    if (looksLikeAddress(valid, test)) require(!compactWholeText(valid).contains(' '), "an address has no blanks");
    if (looksLikeAddress(valid, AddressTest::strict)) require(looksLikeAddress(valid, AddressTest::lenient), "what is sure is likely");
}

void corrections(std::string_view text, unsigned options) {
    const auto middle = text.size() * options / 256;
    const auto change = singleChange(text.substr(0, middle), text.substr(middle));
    require(!singleChange(text, text), "no change, no correction");
    if (!change) return;
    require(!change->corrected.empty() && !change->recognizedWords.empty() && change->recognizedWords.size() <= 3,
            "one word for one to three");
}

void answers(std::string_view text, unsigned) {
    const auto stripped = LocalModelEnhancer::stripWrapping(text);
    require(trimWhitespaceAndNewlines(stripped) == stripped, "no white space at the ends");
}

void chain(std::string_view text, unsigned options) {
    PipelineRequest request;
    request.style.style = (options & 1U) != 0 ? WritingStyle::aktenstil : WritingStyle::brief;
    request.settings.cleanupMode = (options & 2U) != 0 ? CleanupMode::rules : CleanupMode::none;
    request.style.compactText = (options & 4U) != 0;
    request.settings.commandsEnabled = (options & 8U) != 0;
    request.settings.textBlocks = TextBlock::builtIn();
    NoLaws none;
    requireValid(TextPipeline::runWithoutModel(text, request, none).text);
}

/// Every requirement is necessary: with it and without it a pattern does the same.
void patterns(std::string_view text, unsigned) {
    const auto pair = [](std::string_view expression, Requirement requirement) {
        return std::pair(Pattern(expression, LetterCase::ignored, requirement), Pattern(expression, LetterCase::ignored));
    };
    static const std::array pairs = {pair(R"((?<!\p{L})(?:strichpunkt|komma)(?!\p{L}))", Requirement::beginsWith("strichpunkt|komma")),
                                     pair(R"(gewisserma(?:ß|ss)en)", Requirement::beginsWith("gewisserma")),
                                     pair(R"(größe|maß)", Requirement::oneOf("größe|maß")),
                                     pair(R"((?<!\s)\s+([,.;:!?]))", Requirement::pair(Bytes::whitespaceEnds, ByteSet(",.;:!?"))),
                                     pair(R"(([.!?])(?=\p{L}))", Requirement::pair(ByteSet(".!?"), Bytes::letterBegins)),
                                     pair(R"(\b(\p{L}{2,})(?:\s+\1\b(?!\p{M}))++)", Requirement::repeatedWord())};
    const auto mark = [](Pattern::Groups match) { return std::optional("<" + std::string(match[0]) + ">"); };
    for (const auto& [quick, plain] : pairs)
        require(quick.replaceEach(std::string(text), mark) == plain.replaceEach(std::string(text), mark), "a requirement is necessary");
}

} // namespace Stage

struct Target {
    std::string_view name;
    void (*run)(std::string_view text, unsigned options);
};

constexpr auto targets = std::to_array<Target>({{"graphemes", Stage::graphemes},
                                                {"tokenizer", Stage::tokenizer},
                                                {"numbers", Stage::numbers},
                                                {"commands", Stage::commands},
                                                {"punctuation", Stage::punctuation},
                                                {"rules", Stage::rules},
                                                {"blocks", Stage::blocks},
                                                {"citations", Stage::citations},
                                                {"legal", Stage::legal},
                                                {"addresses", Stage::addresses},
                                                {"corrections", Stage::corrections},
                                                {"answers", Stage::answers},
                                                {"patterns", Stage::patterns},
                                                {"chain", Stage::chain},
                                                {"archive", ReaderStage::archive},
                                                {"law", ReaderStage::law},
                                                {"corpus", ReaderStage::corpus},
                                                {"search", ReaderStage::search},
                                                {"insertion", ReaderStage::insertion},
                                                {"frames", ReaderStage::frames},
                                                {"model", ReaderStage::model}});

const Target& chosenTarget() {
    const char* name = std::getenv("QUERLIN_FUZZ_STAGE");
    const auto* found = std::ranges::find(targets, std::string_view(name ? name : ""), &Target::name);
    if (found == targets.end()) {
        std::fputs("QUERLIN_FUZZ_STAGE names no stage.\n", stderr);
        std::exit(2);
    }
    return *found;
}

} // namespace
} // namespace querlin

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto& target = querlin::chosenTarget();
    if (size == 0) return 0;
    target.run({reinterpret_cast<const char*>(data) + 1, size - 1}, data[0]);
    return 0;
}
