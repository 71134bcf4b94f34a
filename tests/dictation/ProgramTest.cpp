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
    fs::path rescued = home / ".local/share/Querlin/Gerettete Diktate";
    fs::path recordings = home / ".cache/Querlin";

    /// Starts the program with this home folder, without a desktop, and asks it to end when it has looked at
    /// everything; gives its exit status.
    int start() const {
        const auto command = "timeout --preserve-status -k 10 2.5 env -i QT_QPA_PLATFORM=offscreen TSAN_OPTIONS=\"$TSAN_OPTIONS\" HOME='" +
                             home.path().string() + "' " + QUERLIN_PROGRAM + " >/dev/null 2>&1";
        return std::system(command.c_str());
    }
};

TEST_F(ProgramTest, BringsWhatACrashLeftIntoSafety) {
    const std::string name = "dictation-3F2504E0-4F89-41D3-9A0C-0305E82C3301";
    writeFile(recordings / (name + ".caf"), "Ton");
    writeFile(recordings / (name + ".txt"), "Sehr geehrte Frau Richterin");
    writeFile(recordings / (name + ".lock"), "");
    EXPECT_EQ(start(), 0);
    const auto names = fileNames(rescued);
    ASSERT_EQ(names.size(), 2U);
    EXPECT_EQ(contentOf(rescued / names[0]), "Ton");
    EXPECT_EQ(contentOf(rescued / names[1]), "Sehr geehrte Frau Richterin");
    EXPECT_TRUE(fileNames(recordings).empty());
    EXPECT_NE(contentOf(log).find("[rescue] Nach einem Absturz gefunden – 4 Wörter gerettet"), std::string::npos);
    EXPECT_EQ(contentOf(log).find("Richterin"), std::string::npos) << "no dictated word in the log";
}

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
    writeFile(home / ".config", "");
    writeFile(home / ".local", "");
    writeFile(home / ".cache", "");
    EXPECT_EQ(start(), 0);
}

} // namespace
} // namespace querlin
