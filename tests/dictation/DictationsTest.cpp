// The dictations of dictations.txt through the whole pipeline with its real stages: from the recogniser's
// text to what is inserted.

#include "support/DictationWorld.h"

#include <cstdlib>
#include <ctime>
#include <fstream>
#include <regex>
#include <sstream>

#include <gtest/gtest.h>

namespace querlin {
namespace {

struct Dictation {
    std::string title;
    WritingStyle style = WritingStyle::neutral;
    CleanupMode mode = CleanupMode::rules;
    bool isSearch = false;
    bool appliesCommands = true;
    std::string raw;
    /// Nothing if it is taken back.
    std::optional<std::string> expected;
};

std::string nextText(std::istream& lines) {
    std::string line;
    std::getline(lines, line);
    return std::regex_replace(line, std::regex(R"(\\n)"), "\n");
}

std::vector<Dictation> readDictations() {
    std::ifstream lines(QUERLIN_DICTATIONS);
    std::vector<Dictation> dictations;
    std::string title;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("# ")) title = line.substr(2);
        if (!line.starts_with("== ")) continue;
        std::istringstream words(line.substr(3));
        std::string style, mode;
        words >> style >> mode;
        auto& dictation = dictations.emplace_back();
        dictation.title = title;
        dictation.style = fromRawValue<WritingStyle>(style).value();
        dictation.mode = fromRawValue<CleanupMode>(mode).value();
        dictation.isSearch = line.contains(" suchfeld");
        dictation.appliesCommands = !line.contains(" befehle-aus");
        dictation.raw = nextText(lines);
        EXPECT_EQ(nextText(lines), "--") << dictation.raw;
        const auto expected = nextText(lines);
        if (expected != "(verworfen)") dictation.expected = expected == "(leer)" ? "" : expected;
    }
    return dictations;
}

TEST(Dictations, BecomeWhatAGuardianWouldHaveWritten) {
    ::setenv("TZ", "Europe/Berlin", 1);
    ::tzset();
    const Date now = std::chrono::sys_days(std::chrono::year(2026) / 3 / 14) + std::chrono::minutes(8 * 60 + 5);
    const auto dictations = readDictations();
    ASSERT_GE(dictations.size(), 60U);
    for (const auto& dictation : dictations) {
        DictationWorld w;
        w.time.setDate(now);
        w.settings.writingStyle.set(dictation.style);
        w.settings.appProfiles.set({});
        w.settings.cleanupMode.set(dictation.mode);
        w.settings.dictationCommandsEnabled.set(dictation.appliesCommands);
        if (dictation.isSearch) w.desktop.focus(DictationContext::FieldKind::search);
        w.dictate(dictation.raw);
        const auto delivered = w.inserter.delivered.empty() ? std::nullopt : std::optional(w.inserter.delivered.back());
        EXPECT_EQ(delivered, dictation.expected) << dictation.title;
    }
}

} // namespace
} // namespace querlin
