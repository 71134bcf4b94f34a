// Starts with something missing or damaged: the program says what, and works with the rest.

#include "Journey.h"

#include "legal/LegalCorpusStore.h"
#include "state/Product.h"
#include "support/HostileDisk.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

constexpr auto sentence = "mit freundlichen Grüßen";
constexpr auto written = "Mit freundlichen Grüßen.";
constexpr auto inTheEditor = "Textbereich: Mit freundlichen Grüßen.";

struct BadStarts : Journey {
    std::unique_ptr<Program> openEditor() { return open({"mousepad", "--disable-server"}, "Textbereich: "); }
    bool isRecordingAfterAPress() {
        press();
        if (eventually([&] { return !querlin.recordings().empty(); }, std::chrono::milliseconds(300))) return true;
        release();
        return false;
    }
};

/// A sound server like the desktop's own, at an address of its own.
std::unique_ptr<Program> soundServerAt(const std::string& socket, const std::filesystem::path& script) {
    shell("sed 's#socket=[^ ]*#socket=" + socket + "#' \"$DESKTOP_DIR/sound.pa\" > '" + script.string() + "'");
    return std::make_unique<Program>(std::vector<std::string>{"env", "-u", "DBUS_SESSION_BUS_ADDRESS",
                                                              "XDG_RUNTIME_DIR=" + script.parent_path().string(), "pulseaudio", "-n", "-F",
                                                              script.string(), "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
                                                              "--disable-shm=yes", "--realtime=no", "--high-priority=no"});
}

TEST_F(BadStarts, WithoutASoundServerAndOneThatComesLater) {
    const auto socket = folder / "ton";
    ::setenv("PULSE_SERVER", ("unix:" + socket.string()).c_str(), 1);
    startQuerlin();
    ASSERT_TRUE(beginRecording());
    EXPECT_TRUE(eventually([&] { return words().contains("Mikrofon-Zugriff fehlt"); })) << words();
    release();
    EXPECT_TRUE(overlayGoes());
    expectNothingKept();
    const auto server = soundServerAt(socket, folder / "ton.pa");
    ASSERT_TRUE(eventually([&] { return isRecordingAfterAPress(); }));
    release();
    EXPECT_TRUE(overlayGoes()) << "nobody has spoken";
    const auto editor = openEditor(); // Only now: a press that is refused brings the setup window to the front.
    dictate(sentence);
    expectDelivered(inTheEditor, written);
}

TEST_F(BadStarts, WithDamagedLaws) {
    std::filesystem::create_directories(querlin.paths().laws());
    writeFile(querlin.paths().laws() / LegalCorpusStore::corpusName, "weder gepackt noch ein Gesetz");
    startQuerlin();
    EXPECT_TRUE(querlin.says("[legal] Korpus liess sich nicht entpacken."));
    const auto editor = openEditor();
    dictate(sentence);
    expectDelivered(inTheEditor, written);
}

TEST_F(BadStarts, WithDamagedSettings) {
    writeFile(querlin.paths().preferencesFile(Product::applicationId), "{ \"playStartSound\": tr");
    startQuerlin();
    EXPECT_TRUE(querlin.says("[app] Einstellungen nicht lesbar – beiseitegelegt als "));
    EXPECT_TRUE(eventually([] { return notifications().contains("Einstellungen nicht lesbar"); }));
    const auto editor = openEditor();
    dictate(sentence);
    expectDelivered(inTheEditor, written);
}

/// Its window that stands in for the tray comes up in the middle of a dictation, and must not come between.
TEST_F(BadStarts, WithoutATray) {
    tray.reset();
    ASSERT_TRUE(eventually([] { return !hasTray(); }));
    startQuerlin();
    const auto editor = openEditor();
    dictate("das Amtsgericht hat den Antrag auf Betreuung genehmigt");
    const std::string text = "Das Amtsgericht hat den Antrag auf Betreuung genehmigt.";
    expectDelivered("Textbereich: " + text, text);
    EXPECT_TRUE(eventually([&] { return words().contains("Aufnahme starten"); })) << words();
    EXPECT_TRUE(becomes("Textbereich: " + text)) << "it doesn't take the keyboard";
}

/// No file can be written, not even the log; then somebody makes room.
TEST_F(BadStarts, OnAFullDisk) {
    {
        const FullDisk full;
        querlin.start();
    }
    const auto editor = openEditor();
    ASSERT_TRUE(eventually([] { return static_cast<bool>(beginRecording()); }));
    EXPECT_TRUE(eventually([&] { return words().contains("Bitte erneut versuchen"); })) << words();
    release();
    EXPECT_TRUE(overlayGoes());
    expectNothingKept();
    const rlimit roomy{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(::prlimit(querlin.id(), RLIMIT_FSIZE, &roomy, nullptr), 0);
    dictate(sentence);
    expectDelivered(inTheEditor, written);
}

} // namespace
} // namespace querlin
