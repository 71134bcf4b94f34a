#include "platform/pocketsphinx/engine/Pronunciations.h"

#include "foundation/Utf8.h"
#include "platform/pocketsphinx/engine/ProgramCall.h"

#include <algorithm>
#include <ranges>
#include <utility>

namespace querlin {

namespace {

/// For all calls of one list: the recognition that needs it waits.
constexpr auto longestLearning = std::chrono::seconds(4);
constexpr std::string_view longSound = "ː";

/// Stress, blanks and joiners aren't sounds.
constexpr bool isSound(char32_t scalar) {
    return scalar != U'ˈ' && scalar != U'ˌ' && scalar != U'\u200D' && scalar != U' ' && scalar != U'\r';
}

std::string soundsOf(std::string_view part) {
    std::string sounds;
    while (!part.empty()) {
        const auto next = decodeScalar(part);
        if (isSound(next.scalar)) sounds += part.substr(0, next.lengthInBytes);
        part.remove_prefix(next.lengthInBytes);
    }
    return sounds;
}

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    for (const auto line : std::views::split(text, '\n')) {
        const std::string_view found(line.begin(), line.end());
        if (!soundsOf(found).empty()) lines.push_back(found);
    }
    return lines;
}

} // namespace

Pronunciations::Pronunciations(const std::filesystem::path& phoneMap) {
    const auto content = Files::read(phoneMap, 1U << 20U);
    if (!content) return;
    for (const auto row : linesOf(*content)) {
        const auto tab = row.find('\t');
        if (tab != std::string_view::npos) phoneOfSound_.emplace(row.substr(0, tab), row.substr(tab + 1));
    }
}

bool Pronunciations::learn(const std::vector<std::string>& words) {
    std::vector<std::string> unknown;
    std::ranges::copy_if(words, std::back_inserter(unknown),
                         [this](const auto& word) { return !known_.contains(word); });
    hasAnswered_ = true;
    deadline_ = std::chrono::steady_clock::now() + longestLearning;
    if (!unknown.empty() && !phoneOfSound_.empty()) ask(std::move(unknown));
    return hasAnswered_;
}

std::string_view Pronunciations::of(const std::string& word) const {
    const auto found = known_.find(word);
    return found == known_.end() ? std::string_view() : found->second;
}

/// It answers each line with a line. Where the numbers differ, one of the words was taken for several or for
/// nothing: each half is asked for by itself then.
void Pronunciations::ask(std::vector<std::string> words) {
    std::string input;
    for (const auto& word : words) input += word + "\n";
    const auto output = outputOf({"espeak-ng", "-v", "de", "-q", "-b", "1", "--ipa", "--sep=_"}, input,
                                 deadline_ - std::chrono::steady_clock::now());
    hasAnswered_ = hasAnswered_ && output.has_value();
    if (!output) return;
    const auto lines = linesOf(*output);
    if (lines.size() == words.size()) {
        for (std::size_t i = 0; i < words.size(); ++i) known_.emplace(words[i], phones(lines[i]));
        return;
    }
    if (words.size() == 1) {
        known_.emplace(words[0], std::string());
        return;
    }
    const auto middle = words.begin() + static_cast<std::ptrdiff_t>(words.size() / 2);
    std::vector<std::string> second(std::make_move_iterator(middle), std::make_move_iterator(words.end()));
    words.erase(middle, words.end());
    ask(std::move(words));
    ask(std::move(second));
}

std::string Pronunciations::phones(std::string_view line) const {
    std::string phones;
    for (const auto part : std::views::split(line, '_')) {
        const auto sound = soundsOf({part.begin(), part.end()});
        if (sound.empty() || sound.starts_with('(')) continue; // "(en)": from here on as in that language.
        if (!add(phones, sound)) return {};
    }
    return phones;
}

/// As it stands, else without its length, else letter by letter.
bool Pronunciations::add(std::string& phones, std::string_view sound) const {
    const auto addRow = [&](std::string_view wanted) {
        const auto found = phoneOfSound_.find(wanted);
        if (found == phoneOfSound_.end()) return false;
        if (!phones.empty() && !found->second.empty()) phones += ' ';
        phones += found->second;
        return true;
    };
    if (addRow(sound)) return true;
    std::string shortened(sound);
    for (std::size_t at = 0; (at = shortened.find(longSound)) != std::string::npos;)
        shortened.erase(at, longSound.size());
    if (addRow(shortened)) return true;
    std::string_view rest = shortened;
    while (!rest.empty()) {
        const auto length = decodeScalar(rest).lengthInBytes;
        if (length == rest.size() && rest == shortened) return false;
        if (!addRow(rest.substr(0, length))) return false;
        rest.remove_prefix(length);
    }
    return true;
}

} // namespace querlin
