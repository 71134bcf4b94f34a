#include "speech/VocabularyProvider.h"
#include "support/ManualTime.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Texts = std::vector<std::string>;

constexpr std::string_view vocabulary = R"({"generated": "3. Mai 2026", "total": 7, "priorityCount": 2,
    "contextualCount": 5, "terms": ["a", "b"],
    "contextual": ["Betreuer", "Betreuung", "Sorge", " Sorge", "sorge"]})";

struct Vocabulary : testing::Test {
    TempFolder folder;
    ManualTime time;
    VocabularyProvider provider{folder.path(), time};

    void write(std::string_view content) { writeFile(folder / VocabularyProvider::fileName, content); }
};

TEST_F(Vocabulary, TheUsersWordsComeFirstAndEachWordOnce) {
    write(vocabulary);
    struct Row {
        Texts user;
        std::int64_t limit;
        Texts result;
        const char* reason;
    };
    for (const auto& row : {Row{{"  betreuer\n", "BETREUER", " \t", "Öhm", "o\u0308hm"},
                                100,
                                {"betreuer", "Öhm", "Betreuung", "Sorge", " Sorge"},
                                "trimmed; of one word the first spelling counts; prepared words aren't trimmed"},
                            Row{{"a", "b", "c", "d"}, 3, {"a", "b", "c"}, "the cap is reached before the prepared words"},
                            Row{{}, 2, {"Betreuer", "Betreuung"}, "the cap cuts the prepared words"},
                            Row{{"a"}, 0, {"a"}, "the cap is looked at after each word"}}) {
        EXPECT_EQ(provider.contextualStrings(row.user, row.limit), row.result) << row.reason;
    }
}

TEST_F(Vocabulary, MissingAndDamagedLeaveTheUsersWords) {
    for (const char* content :
         {"", "{}", R"({"generated": "x", "total": 1, "priorityCount": 0, "contextualCount": 0, "terms": [1], "contextual": []})"}) {
        if (*content != '\0') write(content);
        const VocabularyProvider damaged(folder.path(), time);
        EXPECT_EQ(damaged.contextualStrings({"a"}, 9), Texts{"a"});
    }
}

TEST(DeliveredVocabulary, CanBeReadAndCountsRight) {
    ManualTime time;
    const VocabularyProvider provider(QUERLIN_SOURCE_RESOURCES, time);
    EXPECT_GT(provider.totalTerms(), 500);
    EXPECT_EQ(std::ssize(provider.allTerms()), provider.totalTerms());
    EXPECT_EQ(std::ssize(provider.contextualStrings({}, 10'000)), provider.contextualCandidates());
}

} // namespace
} // namespace querlin
