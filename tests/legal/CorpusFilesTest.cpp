#include "support/Laws.h"

#include "foundation/Json.h"
#include "state/JsonRecord.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace querlin {
namespace {

std::string lengthField(std::int64_t length) {
    std::string bytes(sizeof(length), '\0');
    std::memcpy(bytes.data(), &length, sizeof(length));
    return bytes;
}

TEST(CorpusContainer, TellsWhatIsNoContainer) {
    const std::string document = "{\"a\": \"" + std::string(1000, 'x') + "\"}";
    const auto container = *CorpusContainer::deflate(document);
    const auto stream = container.substr(8);
    EXPECT_EQ(std::string_view(*CorpusContainer::inflate(container)), document);

    const auto size = static_cast<std::int64_t>(document.size());
    const std::vector<std::pair<std::string, const char*>> rows = {
        {"", "nothing"},
        {lengthField(-1) + stream, "a negative length"},
        {lengthField(0x2000'0000) + stream, "half a gigabyte, more than is allowed"},
        {lengthField(0x1FFF'FFFF) + stream, "half a gigabyte, allowed but not there: no memory is taken"},
        {lengthField(size + 1) + stream, "one byte more than there is"},
        {lengthField(size - 1) + stream, "one byte less than there is"},
        {container.substr(0, container.size() / 2), "cut off"},
        {lengthField(size) + std::string(100, '\xFF'), "no stream"}};
    for (const auto& [bytes, reason] : rows) EXPECT_FALSE(CorpusContainer::inflate(bytes)) << reason;
}

const LegalCorpusFile& sample() {
    static const LegalCorpusFile file{
        "2026-01-01",
        {lawOf("BGB", {sectionOf("1", "Titel mit \"Zeichen\" \\ / \t", "Erste Zeile\nzweite\n\n\tZelle\tZelle"),
                       sectionOf("1a", "", "ß ẞ – „x“ 𝛼 \u0001"), sectionOf("4294967295", "", "32 Bit"),
                       sectionOf("4294967296", "", "eins mehr"), sectionOf("9223372036854775807", "", "63 Bit")}),
         lawOf("Leer", {})}};
    return file;
}

TEST(LegalCorpusFile, ReadsWhatItWrites) {
    const auto json = sample().toJson();
    EXPECT_EQ(LegalCorpusFile::fromJson(json), sample());
    const auto copy = LegalCorpusFile::fromJson(json)->laws[0].sections[0];
    EXPECT_EQ(copy, sample().laws[0].sections[0]) << "a record outlives the file that it comes from";
}

TEST(LegalCorpusFile, RefusesWhatIsDamagedOrHostile) {
    const auto with = [whole = sample().toJson()](std::string_view from, std::string_view to) {
        const auto at = whole.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        return std::string(whole).replace(at, from.size(), to);
    };
    EXPECT_EQ(LegalCorpusFile::fromJson(with(R"("id")", R"("neu":{"a":[1,{"b":[null]}]},"id")")), sample()) << "an unknown key";
    const std::vector<std::pair<std::string, const char*>> refused = {
        {"", "nothing"},
        {sample().toJson() + std::string(1, '\0') + "x", "text behind a zero byte"},
        {with(R"("id":"1",)", ""), "a section's key is missing"},
        {with(R"("generated")", R"("laws":[],"x":true,"generated")"), "two lists of laws"},
        {with(R"("number":9223372036854775807)", R"("number":9223372036854775808)"), "too great a number"},
        {with("Erste", "\xC3\x28"), "ill-formed UTF-8"},
        {with("Erste", R"(\ud800)"), "half a surrogate pair"},
        {with(R"("id")", R"("neu":)" + std::string(100'000, '[') + R"(,"id")"), "deep nesting"}};
    for (const auto& [json, reason] : refused) EXPECT_FALSE(LegalCorpusFile::fromJson(json)) << reason;
}

TEST(LegalManifest, ReadsDatesAndRangesThatAreSome) {
    LegalManifestEntry entry;
    entry.priorityRanges = {{5}, {9, 3}, {5, 5}, {}, {1, 2, 3}, {1, 2}};
    EXPECT_EQ(entry.ranges(), (std::vector<LegalManifestEntry::Range>{{5, 5}, {1, 2}}));
    const Date midnight = std::chrono::sys_days(std::chrono::year(2024) / 7 / 2);
    entry.builddate = "20240702030000";
    EXPECT_EQ(entry.buildDate(), midnight + std::chrono::hours(1)) << "summer in Berlin";
    for (const auto* text : {"", "2024010203000", "20240230030000", "2024010203000x", "20240102250000"}) {
        entry.builddate = text;
        EXPECT_FALSE(entry.buildDate()) << text;
    }
}

LegalManifest manifestOf(std::string generated, std::string abbr) {
    LegalManifestEntry row;
    row.abbr = std::move(abbr);
    row.priorityRanges = {{1, 2}, {7}};
    return {std::move(generated), {row}};
}

TEST(LegalCorpusStore, PrefersWhatIsStored) {
    LawFolders laws;
    EXPECT_FALSE(laws.store.corpusURL());
    EXPECT_FALSE(laws.store.currentManifest());
    const auto delivered = manifestOf("2026-01-01", "A");
    laws.deliver({});
    writeFile(laws.folder / "Ressourcen/LegalManifest.json", Json::compact(toJson(delivered)));
    EXPECT_EQ(laws.store.corpusURL(), laws.folder / "Ressourcen/LegalCorpus.deflate");
    EXPECT_EQ(laws.store.currentManifest(), delivered);

    const Date now = std::chrono::sys_days(std::chrono::year(2026) / 3 / 14) + std::chrono::hours(23);
    ASSERT_TRUE(laws.store.write({sample(), manifestOf("alt", "B")}, now));
    const auto stored = manifestOf("2026-03-14", "B");
    EXPECT_EQ(laws.store.currentManifest(), stored) << "the day in UTC";
    EXPECT_EQ(loadCorpus(*laws.store.corpusURL()).value(), sample());

    const LegalCorpusFile unreadable{"x", {lawOf("B", {sectionOf("1", "", "kein UTF-8: \xFF")})}};
    EXPECT_FALSE(laws.store.write({unreadable, manifestOf("neu", "C")}, now));
    EXPECT_EQ(loadCorpus(*laws.store.corpusURL()).value(), sample()) << "read back before it replaces the last one";
    EXPECT_EQ(laws.store.currentManifest(), stored);
    EXPECT_EQ(fileNames(laws.store.directory()), (std::vector<std::string>{"LegalCorpus.deflate", "LegalManifest.json"}));

    writeFile(laws.store.updatedManifestURL(), R"({"generated":"x","laws":[{"abbr":"B"}]})");
    EXPECT_EQ(laws.store.currentManifest(), delivered) << "a damaged one is passed over";
    laws.store.discardUpdated();
    EXPECT_EQ(laws.store.corpusURL(), laws.folder / "Ressourcen/LegalCorpus.deflate");
}

TEST(Resources, NameTheLawsThatGuardiansNeed) {
    const LegalCorpusStore store({}, QUERLIN_RESOURCES);
    const auto manifest = store.bundledManifest();
    const auto corpus = loadCorpus(*store.corpusURL());
    ASSERT_TRUE(manifest && corpus && corpus->laws.size() == 26);
    ASSERT_TRUE(std::ranges::equal(corpus->laws, manifest->laws, {}, &LegalLaw::abbr, &LegalManifestEntry::abbr));
    for (const auto& row : manifest->laws) {
        EXPECT_EQ(row.source, "https://www.gesetze-im-internet.de/" + row.slug + "/xml.zip");
        EXPECT_EQ(row.ranges().size(), row.priorityRanges.size()) << row.abbr;
    }
}

} // namespace
} // namespace querlin
