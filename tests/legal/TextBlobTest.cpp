#include "legal/TextBlob.h"

#include "foundation/TextCase.h"

#include <random>

#include <gtest/gtest.h>

namespace querlin {
namespace {

std::vector<std::size_t> found(const TextBlob& blob, std::string_view term, TextBlob::Range range, Registers registers) {
    std::vector<std::size_t> numbers;
    blob.search(term, range, [&numbers](std::size_t number) {
        numbers.push_back(number);
        return true;
    }, registers);
    return numbers;
}

TEST(TextBlob, FindsWhatAnyoneWouldFind) {
    // Few letters, so that terms are found at all distances from the edges of what is read at once.
    std::mt19937 random(7);
    const auto number = [&random](std::size_t most) { return std::uniform_int_distribution<std::size_t>(0, most)(random); };
    const std::vector<std::string> pieces = {"a", "b", "ab", "E", "ä", "Ö", "ß", "–", " ", "n", "Ω", "\n"};
    const auto text = [&](std::size_t most) {
        std::string made;
        for (auto left = number(most); left > 0; --left) made += pieces[number(pieces.size() - 1)];
        return made;
    };
    for (int round = 0; round < 300; ++round) {
        std::vector<std::string> texts(number(12));
        for (auto& one : texts) one = text(round % 10 == 0 ? 400 : 60);
        TextBlob blob(100);
        for (auto& one : texts) {
            blob.append(one);
            one = lowercase(one) + "\n";
        }
        ASSERT_EQ(blob.count(), texts.size());
        for (int query = 0; query < 20; ++query) {
            const auto term = lowercase(text(1 + static_cast<std::size_t>(query)));
            const auto first = number(texts.size());
            const TextBlob::Range range{first, first + number(texts.size() - first)};
            std::vector<std::size_t> expected;
            std::string rest;
            for (auto i = texts.size(); i > 0; --i) {
                rest = texts[i - 1] + rest;
                const auto place = rest.find(term);
                const bool begins = place != std::string::npos && place < texts[i - 1].size();
                if (begins && !term.empty() && i > range.first && i <= range.end) expected.insert(expected.begin(), i - 1);
            }
            EXPECT_EQ(found(blob, term, range, Registers::portable), expected) << term;
            EXPECT_EQ(found(blob, term, range, widestRegisters()), expected) << term;
        }
    }
}

TEST(TextBlob, StopsWhenTold) {
    TextBlob blob(10);
    for (const auto* text : {"ja", "nein", "ja"}) blob.append(text);
    int calls = 0;
    blob.search("ja", {0, 3}, [&calls](std::size_t) { return ++calls < 1; });
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace querlin
