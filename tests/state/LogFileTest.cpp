// The log on disk: order, stamps, truncation, odd places.

#include "state/LogFile.h"
#include "support/ManualTime.h"
#include "support/TempFolder.h"

#include <sstream>
#include <thread>

#include <sys/stat.h>

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;

class LogFileTest : public testing::Test {
protected:
    TempFolder folder;
    ManualTime time;
    fs::path file = folder / "state/Querlin.log";
    LogFile log{file, time};
    DiagnosticsLog::Installation installation{log};

    std::string content() {
        EXPECT_TRUE(log.flush(std::chrono::seconds(20)));
        return contentOf(file);
    }
};

TEST_F(LogFileTest, WritesStampCategoryAndMessageForTheOwnerAlone) {
    DiagnosticsLog::note("app", "=== Start ===");
    DiagnosticsLog::trace("diag", "wer fragt danach?");
    DiagnosticsLog::verbose = true;
    DiagnosticsLog::trace("diag", "zwei\nZeilen");
    DiagnosticsLog::verbose = false;
    EXPECT_EQ(content(), "09:30:00.000  [app] === Start ===\n09:30:00.000  [diag] zwei\nZeilen\n");
    struct stat status{};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST_F(LogFileTest, StartsAgainBeyondTheLimitAndWhenItsFolderHasGone) {
    writeFile(file, std::string(2'000'000, 'x'));
    DiagnosticsLog::note("a", "passt noch");
    EXPECT_GT(content().size(), 2'000'000U) << "exactly the limit is appended to";
    DiagnosticsLog::note("a", "1");
    EXPECT_EQ(content(), "09:30:00.000  [a] 1\n");
    fs::remove_all(folder / "state");
    DiagnosticsLog::note("a", "2");
    EXPECT_EQ(content(), "09:30:00.000  [a] 2\n");
}

TEST_F(LogFileTest, NeverHangsOrFailsWhereItCannotWrite) {
    fs::create_directories(file.parent_path());
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0); // nobody reads
    DiagnosticsLog::note("a", "ins Rohr");
    EXPECT_TRUE(log.flush(std::chrono::seconds(20)));
    fs::remove(file);
    fs::create_directory(file);
    DiagnosticsLog::note("a", "in den Ordner");
    EXPECT_TRUE(log.flush(std::chrono::seconds(20)));
}

TEST_F(LogFileTest, LinesOfManyThreadsStayWholeAndInEachThreadsOrder) {
    constexpr int threads = 8;
    constexpr int lines = 500;
    {
        std::vector<std::jthread> writers;
        for (int t = 0; t < threads; ++t) {
            writers.emplace_back([t] {
                for (int i = 0; i < lines; ++i) DiagnosticsLog::note("t" + std::to_string(t), std::to_string(i));
            });
        }
    }
    std::vector<int> next(threads, 0);
    std::istringstream all(content());
    std::string stamp;
    char letter = 0;
    for (int thread = 0, number = 0; all >> stamp >> letter >> letter >> thread >> letter >> number;)
        EXPECT_EQ(number, next.at(static_cast<std::size_t>(thread))++);
    EXPECT_EQ(next, std::vector<int>(threads, lines));
}

} // namespace
} // namespace querlin
