// The real program, started among files in bad shape: it must come up, keep what is there, and end.

#include "support/TempFolder.h"

#include <cstdlib>

#include <sys/stat.h>

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;

class ProgramTest : public testing::Test {
protected:
    TempFolder home;
    fs::path log = home / ".local/state/Querlin.log";
    fs::path settings = home / ".config/local.mandolan.querlin.json";

    /// Starts the program with this home folder, without a desktop, and asks it to end when it has looked at
    /// everything; gives its exit status.
    int start() const {
        const auto command = "timeout --preserve-status -k 10 2.5 env -i QT_QPA_PLATFORM=offscreen TSAN_OPTIONS=\"$TSAN_OPTIONS\" HOME='" +
                             home.path().string() + "' " + QUERLIN_PROGRAM + " >/dev/null 2>&1";
        return std::system(command.c_str());
    }
};

TEST_F(ProgramTest, ComesUpAndEndsAmongDamagedFiles) {
    writeFile(settings, "{kaputt");
    writeFile(home / ".config/local.tiktalon.json", "\xFF");
    fs::create_directories(log.parent_path());
    ASSERT_EQ(::mkfifo(log.c_str(), 0600), 0); // nobody reads
    writeFile(home / ".local/share/Querlin", "eine Datei, kein Ordner");
    EXPECT_EQ(start(), 0);
    fs::remove_all(home / ".config/pulse"); // The sound server's library has one of its own.
    EXPECT_EQ(fileNames(home / ".config").size(), 3U) << "settings set aside and written anew, the former product's left alone";
}

TEST_F(ProgramTest, ComesUpWhereNothingCanBeWritten) {
    for (const auto* name : {".config", ".local", ".cache"}) writeFile(home / name, "");
    EXPECT_EQ(start(), 0);
}

} // namespace
} // namespace querlin
