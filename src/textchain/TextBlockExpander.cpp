#include "textchain/TextBlockExpander.h"

#include "foundation/Characters.h"
#include "foundation/GermanFormat.h"
#include "foundation/Graphemes.h"
#include "foundation/Requirement.h"
#include "foundation/TextCase.h"
#include "foundation/Trimming.h"
#include "foundation/Words.h"

#include <algorithm>

namespace querlin::TextBlockExpander {

namespace {

constexpr std::array<std::string_view, 3> triggers = {"baustein", "textbaustein", "vorlage"};

/// A block with its name in compared form, word by word.
struct SpokenBlock {
    const TextBlock* block = nullptr;
    std::vector<std::string> name;
};

std::vector<std::string> wordsOfName(std::string_view name) {
    std::vector<std::string> words;
    while (!name.empty()) {
        const auto end = std::min(name.find(' '), name.size());
        if (end > 0) words.push_back(comparedForm(name.substr(0, end)));
        name.remove_prefix(std::min(end + 1, name.size()));
    }
    return words;
}

/// Names with more words first; blocks without a name can't be called.
std::vector<SpokenBlock> inOrderOfMatching(std::span<const TextBlock> blocks) {
    std::vector<SpokenBlock> spoken;
    for (const auto& block : blocks) {
        if (auto name = wordsOfName(block.name); !name.empty()) spoken.push_back({&block, std::move(name)});
    }
    std::ranges::stable_sort(spoken, std::greater(),
                             [](const SpokenBlock& block) { return block.name.size(); });
    return spoken;
}

const SpokenBlock* blockAt(std::span<const SpokenBlock> blocks, const Words& words, std::size_t at) {
    const auto found = std::ranges::find_if(blocks, [&](const SpokenBlock& block) {
        auto next = at;
        return at + block.name.size() <= words.size() &&
               std::ranges::all_of(block.name,
                                   [&](const auto& part) { return words.compared(next++) == part; });
    });
    return found == blocks.end() ? nullptr : &*found;
}

void appendContent(std::string& text, const std::string& content) {
    if (!text.empty() && !endsInWhitespaceOrNewline(text)) text += ' ';
    text += content;
}

std::string_view withoutTrailingGap(std::string_view text) {
    for (auto last = lastGrapheme(text); isWhitespace(last); last = lastGrapheme(text))
        text.remove_suffix(last.size());
    return text;
}

std::string valueOf(std::string_view placeholder, Date now) {
    if (placeholder == placeholders[0]) return germanDate(now);
    if (placeholder == placeholders[1]) return germanTime(now);
    if (placeholder == placeholders[2]) return germanWeekday(now);
    return std::to_string(localTime(now).year);
}

} // namespace

Outcome expand(std::string_view text, std::span<const TextBlock> blocks, Date now) {
    if (blocks.empty()) return {std::string(text), {}};
    constexpr auto trigger = Requirement::oneOf("baustein|vorlage");
    if (!trigger.isMetBy(text)) return {std::string(withoutTrailingGap(text)), {}};
    const auto spoken = inOrderOfMatching(blocks);
    const Words words(text);

    Outcome outcome;
    for (std::size_t at = 0; at < words.size();) {
        const bool isTrigger = std::ranges::count(triggers, words.compared(at)) > 0;
        const auto* match = isTrigger ? blockAt(spoken, words, at + 1) : nullptr;
        if (match) {
            appendContent(outcome.text, fillPlaceholders(match->block->content, now));
            outcome.usedBlocks.push_back(match->block->name);
            at += 1 + match->name.size();
        } else {
            outcome.text += words.raw(at);
            ++at;
        }
    }
    return outcome;
}

std::string fillPlaceholders(std::string_view content, Date now) {
    std::string filled;
    while (!content.empty()) {
        const auto open = std::min(content.find('{'), content.size());
        filled += content.substr(0, open);
        content.remove_prefix(open);
        const auto* found = std::ranges::find_if(placeholders, [content](std::string_view placeholder) {
            return equalIgnoringCase(content.substr(0, placeholder.size()), placeholder);
        });
        if (found != placeholders.end()) {
            filled += valueOf(*found, now);
            content.remove_prefix(found->size());
        } else if (!content.empty()) {
            filled += '{';
            content.remove_prefix(1);
        }
    }
    return filled;
}

} // namespace querlin::TextBlockExpander
