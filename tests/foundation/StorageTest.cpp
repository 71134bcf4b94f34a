// Files, JSON, dates and identifiers as they reach the disk.

#include "foundation/Files.h"
#include "foundation/IsoDate.h"
#include "foundation/Json.h"
#include "foundation/Uuid.h"
#include "support/TempFolder.h"

#include <thread>

#include <sys/stat.h>

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;

mode_t modeOf(const fs::path& path) {
    struct stat status{};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 0777U;
}

TEST(Files, WritesForTheOwnerAloneAndReplacesWhole) {
    const TempFolder folder;
    const auto file = folder / "a/b/Verlauf.json";
    ASSERT_TRUE(Files::makeFolder(file.parent_path()));
    ASSERT_TRUE(Files::writeAtomically(file, "alt"));
    ASSERT_TRUE(Files::writeAtomically(file, "neu"));
    EXPECT_EQ(contentOf(file), "neu");
    EXPECT_EQ(modeOf(file), 0600U);
    EXPECT_EQ(modeOf(folder / "a"), 0700U);
    EXPECT_EQ(fileNames(file.parent_path()), (std::vector<std::string>{"Verlauf.json"}));
}

TEST(Files, AReaderNeverSeesAPartOfAWrite) {
    const TempFolder folder;
    const auto file = folder / "x";
    const std::string ones(300'000, '1');
    const std::string twos(200'000, '2');
    ASSERT_TRUE(Files::writeAtomically(file, ones));
    std::jthread writer([&](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            (void)Files::writeAtomically(file, twos, Files::Durability::Unsynced);
            (void)Files::writeAtomically(file, ones, Files::Durability::Unsynced);
        }
    });
    for (int i = 0; i < 300; ++i) {
        const auto content = Files::read(file);
        ASSERT_TRUE(content);
        ASSERT_TRUE(*content == ones || *content == twos);
    }
}

TEST(Files, ReadsOnlyWholeRegularFilesOfReasonableSize) {
    const TempFolder folder;
    writeFile(folder / "groß", std::string(101, 'x'));
    ASSERT_EQ(::mkfifo((folder / "rohr").c_str(), 0600), 0);
    EXPECT_EQ(Files::read(folder / "groß", 100).error().code, std::errc::file_too_large);
    EXPECT_TRUE(Files::read(folder / "groß", 101));
    EXPECT_FALSE(Files::read(folder / "rohr")) << "a pipe without a writer must not hang";
    EXPECT_FALSE(Files::read(folder.path()));
    EXPECT_EQ(Files::read(folder / "fehlt").error().code, std::errc::no_such_file_or_directory);
}

/// /dev/shm and /var/tmp are different file systems nearly everywhere.
TEST(Files, MovesAndCopiesRegularFilesAloneAlsoToAnotherFileSystem) {
    const TempFolder folder;
    writeFile(folder / "ton", "Ton");
    const fs::path elsewhere = fs::path("/var/tmp") / ("querlin-" + newUuid());
    ASSERT_EQ(::mkfifo((folder / "rohr").c_str(), 0600), 0);
    EXPECT_TRUE(Files::link(folder / "ton", folder / "zweite"));
    const auto open = Files::OpenFile::open(folder / "ton");
    for (const auto* name : {"rohr", "fehlt"}) {
        EXPECT_FALSE(Files::link(folder / name, folder / "dritte"));
        EXPECT_FALSE(Files::OpenFile::open(folder / name));
    }
    fs::remove(folder / "ton");
    EXPECT_EQ(contentOf(folder / "zweite"), "Ton");
    EXPECT_TRUE(open->copyTo(elsewhere)) << "its name has gone";
    EXPECT_TRUE(Files::move(elsewhere, folder / "zurück"));
    EXPECT_EQ(contentOf(folder / "zurück"), "Ton");
    EXPECT_FALSE(fs::exists(elsewhere));
}

TEST(Files, SweepsOldUnfinishedWritesAlone) {
    const TempFolder folder;
    const auto old = Files::unfinishedName(folder / "Verlauf.json");
    const auto young = Files::unfinishedName(folder / "Verlauf.json");
    writeFile(old, "halb");
    writeFile(young, "halb");
    writeFile(folder / ".fremd.neu", "fremd");
    const auto hourAgo = fs::file_time_type::clock::now() - std::chrono::hours(1);
    fs::last_write_time(old, hourAgo);
    fs::last_write_time(folder / ".fremd.neu", hourAgo);
    Files::removeUnfinishedWrites(folder.path());
    EXPECT_FALSE(fs::exists(old));
    EXPECT_TRUE(fs::exists(young)) << "may be under way in another process";
    EXPECT_TRUE(fs::exists(folder / ".fremd.neu"));
}

TEST(Json, KeepsTypesAndTexts) {
    const auto value = Json::parse(R"({"a":15,"b":15.0,"c":-3e2,"d":"ä\u00df\n","e":[true,null],"a":16,"big":18446744073709551615})");
    ASSERT_TRUE(value);
    EXPECT_EQ(value->member("a")->integer(), 16) << "the last member of a name counts";
    EXPECT_FALSE(value->member("b")->integer() || value->member("big")->integer());
    EXPECT_EQ(*value->member("d")->string(), "äß\n");
    EXPECT_EQ(Json::parse(Json::pretty(*value)), *value);
    EXPECT_EQ(Json::compact(JsonValue(2.0)), "2.0") << "a double stays one";
}

TEST(Json, RefusesWhatIsNoJson) {
    const std::string deepArray = std::string(100'000, '[') + std::string(100'000, ']');
    std::string deepObject;
    for (int i = 0; i < 100'000; ++i) deepObject += R"({"a":)";
    for (const auto& text : {std::string(), std::string("{\"a\":1"), std::string("{} {}"), std::string("\"\xff\""),
                             std::string(R"("\ud800")"), std::string("1e999"), deepArray, deepObject, std::string("\0\0", 2)})
        EXPECT_FALSE(Json::parse(text)) << text.substr(0, 20);
}

TEST(IsoDate, ReadsWhatItWrites) {
    using namespace std::chrono;
    const Date date = sys_days(2026y / 3 / 1) + 9h + 30min;
    EXPECT_EQ(isoDate(date), "2026-03-01T09:30:00Z");
    for (const auto odd : {date, date + 1ns, date + 999999999ns, Date(-1ns), Date::max() - hours(24 * 365)}) {
        EXPECT_EQ(parseIsoDate(isoDate(odd)), odd);
    }
    for (const auto* bad : {"", "2026-02-29T00:00:00Z", "2026-03-01T24:00:00Z", "2026-03-01T09:30:00+01:00", "2026-03-01T09:30:00.Z",
                            "9999-01-01T00:00:00Z"}) {
        EXPECT_EQ(parseIsoDate(bad), std::nullopt) << bad;
    }
}

} // namespace
} // namespace querlin
