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
    EXPECT_EQ(container.substr(0, 8), lengthField(static_cast<std::int64_t>(document.size())));

    const auto size = static_cast<std::int64_t>(document.size());
    const std::vector<std::pair<std::string, const char*>> rows = {
        {"", "nothing"},
        {container.substr(0, 8), "a length alone"},
        {lengthField(0) + stream, "no length"},
        {lengthField(-1) + stream, "a negative length"},
        {lengthField(0x2000'0000) + stream, "half a gigabyte, more than is allowed"},
        {lengthField(0x1FFF'FFFF) + stream, "half a gigabyte, allowed but not there: no memory is taken"},
        {lengthField(size + 1) + stream, "one byte more than there is"},
        {lengthField(size - 1) + stream, "one byte less than there is"},
        {container.substr(0, container.size() / 2), "cut off"},
        {lengthField(size) + std::string(100, '\xFF'), "no stream"}};
    for (const auto& [bytes, reason] : rows) EXPECT_FALSE(CorpusContainer::inflate(bytes)) << reason;
    EXPECT_FALSE(CorpusContainer::deflate("")) << "what couldn't be read is not written";
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
    EXPECT_TRUE(Json::parse(json)) << "any reader understands it";
    const auto copy = LegalCorpusFile::fromJson(json)->laws[0].sections[0];
    EXPECT_EQ(copy, sample().laws[0].sections[0]) << "a record outlives the file that it comes from";
}

TEST(LegalCorpusFile, AsksForEveryKeyAndNoOther) {
    const std::string section = R"({"id":"1","number":1,"suffix":"","label":"§ 1","title":"","path":"","text":"T","priority":true})";
    const auto law = [](const std::string& sections) {
        return R"({"abbr":"A","name":"N","tier":1,"slug":"a","stand":"","builddate":"","source":"","sections":[)" + sections + "]}";
    };
    const auto file = [](const std::string& laws) { return R"({"generated":"g","laws":[)" + laws + "]}"; };
    const auto with = [](std::string json, std::string_view from, std::string_view to) {
        const auto at = json.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        return json.replace(at, from.size(), to);
    };
    const auto whole = file(law(section));
    ASSERT_TRUE(LegalCorpusFile::fromJson(whole));

    const std::vector<std::pair<std::string, const char*>> accepted = {
        {with(whole, R"("id")", R"("neu":{"a":[1,{"b":[null]}]},"id")"), "an unknown key with whatever in it"},
        {with(whole, R"("priority":true)", R"("priority":false,"priority":true)"), "of two of one name the last counts"},
        {with(whole, R"("id":"1","number":1,)", "")
             .insert(with(whole, R"("id":"1","number":1,)", "").find(R"("suffix")"), R"("number":1,"id":"1",)"),
         "any order"},
        {file(""), "no laws"}};
    for (const auto& [json, reason] : accepted) EXPECT_TRUE(LegalCorpusFile::fromJson(json)) << reason;

    std::string deep = with(whole, R"("id")", R"("neu":)" + std::string(100'000, '[') + R"(,"id")");
    const std::vector<std::pair<std::string, const char*>> refused = {
        {"", "nothing"},
        {"[]", "no object"},
        {whole.substr(0, whole.size() - 3), "cut off"},
        {whole + "x", "text behind"},
        {whole + std::string(1, '\0') + "x", "text behind a zero byte"},
        {with(whole, R"("id":"1",)", ""), "a section's key is missing"},
        {with(whole, R"("generated":"g",)", ""), "a key of the file is missing"},
        {R"({"generated":"g"})", "no laws at all"},
        {with(whole, R"("generated")", R"("laws":[],"x":true,"generated")"), "two lists of laws"},
        {with(whole, R"("number":1)", R"("number":"1")"), "text for a number"},
        {with(whole, R"("number":1)", R"("number":9223372036854775808)"), "too great a number"},
        {with(whole, R"("number":1)", R"("number":null)"), "null for a number"},
        {with(whole, R"("text":"T")", R"("text":5)"), "a number for a text"},
        {with(whole, R"("text":"T")", R"("text":{})"), "an object for a text"},
        {R"({"generated":"g","laws":{}})", "an object for a list"},
        {R"({"generated":"g","laws":[5]})", "a number for a law"},
        {with(whole, "\"T\"", "\"\xC3\x28\""), "ill-formed UTF-8"},
        {with(whole, "\"T\"", R"("\ud800")"), "half a surrogate pair"},
        {deep, "deep nesting"},
        {std::string(1'000'000, '['), "nothing but nesting"}};
    for (const auto& [json, reason] : refused) {
        const auto read = LegalCorpusFile::fromJson(json);
        ASSERT_FALSE(read) << reason;
        EXPECT_TRUE(read.error().starts_with("Der Gesetzesbestand ist kein ")) << reason << read.error();
    }
}

TEST(LegalManifest, ReadsDatesAndRangesThatAreSome) {
    LegalManifestEntry entry;
    entry.priorityRanges = {{5}, {9, 3}, {5, 5}, {}, {1, 2, 3}, {1, 2}};
    EXPECT_EQ(entry.ranges(), (std::vector<LegalManifestEntry::Range>{{5, 5}, {1, 2}}));
    const Date midnight = std::chrono::sys_days(std::chrono::year(2024) / 7 / 2);
    entry.builddate = "20240702030000";
    EXPECT_EQ(entry.buildDate(), midnight + std::chrono::hours(1)) << "summer in Berlin";
    for (const auto* text :
         {"", "2024010203000", "202401020300000", "20241302030000", "20240230030000", "2024010203000x", "20240102250000"}) {
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
    ASSERT_TRUE(manifest);
    EXPECT_EQ(manifest->laws.size(), 26);
    const auto corpus = loadCorpus(*store.corpusURL());
    ASSERT_TRUE(corpus) << corpus.error();
    ASSERT_EQ(corpus->laws.size(), 26);
    for (std::size_t i = 0; i < 26; ++i) {
        const auto& row = manifest->laws[i];
        EXPECT_EQ(corpus->laws[i].abbr, row.abbr);
        EXPECT_TRUE(corpus->laws[i].sections.empty()) << "law texts come from the portal";
        EXPECT_EQ(row.source, "https://www.gesetze-im-internet.de/" + row.slug + "/xml.zip");
        EXPECT_TRUE(row.lastModified.empty() && row.sectionCount == 0);
        EXPECT_EQ(row.ranges().size(), row.priorityRanges.size()) << row.abbr;
    }
}

} // namespace
} // namespace querlin
