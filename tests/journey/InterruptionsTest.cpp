// Dictations that something comes between: a text that was spoken is delivered or rescued.

#include "../session/dbus/Buses.h"
#include "Journey.h"

#include <csignal>

#include <gtest/gtest.h>

namespace querlin {
namespace {

constexpr auto sentence = "das Amtsgericht hat den Antrag auf Betreuung genehmigt";
constexpr auto written = "Das Amtsgericht hat den Antrag auf Betreuung genehmigt.";

struct Interruptions : Journey {
    /// An editor with the cursor in it, and the sentence said while the key is still down.
    std::unique_ptr<Program> editor;
    void sayInEditor() {
        editor = open({"mousepad", "--disable-server"}, "Textbereich: ");
        say(sentence);
    }
};

TEST_F(Interruptions, AFieldThatTakesNoText) {
    startQuerlin();
    const auto fields = open({QUERLIN_QT_FIELDS}, "Textfeld: Zeile");
    for (const auto* field : {"Textfeld (Passwort): -", "Textbereich: erste\nzweite", "Textfeld: Auswahl", "unbekannt: nur lesen"}) {
        shell("xdotool key Tab");
        ASSERT_TRUE(becomes(field));
    }
    dictate(sentence);
    expectRescued(written, "Der Text kam im Zielfeld nicht an");
    EXPECT_EQ(clipboard(), written);
    EXPECT_TRUE(becomes("unbekannt: nur lesen"));
}

TEST_F(Interruptions, AScreenThatIsLocked) {
    Speaker screenSaver(Speaker::On::session);
    startQuerlin();
    sayInEditor();
    screenSaver.own("org.freedesktop.ScreenSaver"); // Not before: by way of the portal, editors ask it and wait.
    screenSaver.emit("/org/freedesktop/ScreenSaver", "org.freedesktop.ScreenSaver", "ActiveChanged", true);
    EXPECT_TRUE(querlin.says("[controller] Diktat unterbrochen: Der Bildschirm wurde gesperrt"));
    expectRescued(written, "Der Bildschirm wurde gesperrt");
    EXPECT_EQ(clipboard(), written);
    release();
    EXPECT_TRUE(becomes("Textbereich: ")) << "nothing is written behind the lock";
}

TEST_F(Interruptions, AMachineThatGoesToSleep) {
    Login login;
    startQuerlin();
    ASSERT_TRUE(eventually([&] { return login.inhibitors() == "shutdown sleep"; }));
    sayInEditor();
    login.prepareFor("Sleep", true);
    ASSERT_TRUE(eventually([&] { return login.inhibitors() == "shutdown"; }));
    EXPECT_EQ(querlin.rescued().size(), 2U) << "before the machine may go on";
    expectRescued(written, "Der Rechner wurde gesperrt oder ging in den Ruhezustand");
}

TEST_F(Interruptions, AMicrophoneThatIsUnplugged) {
    startQuerlin();
    sayInEditor();
    shell("pactl unload-module module-remap-source");
    EXPECT_TRUE(querlin.says("[audio] Nach dem Gerätewechsel kein Eingang: "));
    EXPECT_TRUE(querlin.says("[controller] Diktat unterbrochen: Nach dem Mikrofonwechsel kam kein Ton mehr an"));
    release();
    expectDelivered(std::string("Textbereich: ") + written, written);
}

TEST_F(Interruptions, AProgramThatIsKilled) {
    startQuerlin();
    sayInEditor();
    EXPECT_EQ(querlin.end(SIGKILL), -SIGKILL);
    release();
    EXPECT_FALSE(querlin.recordings().empty());
    startQuerlin();
    expectRescued(sentence, "Nach einem Absturz gefunden");
    EXPECT_TRUE(becomes("Textbereich: "));
    dictate("mit freundlichen Grüßen");
    EXPECT_TRUE(querlin.says("[timing] Erkennung"));
    EXPECT_TRUE(becomes("Textbereich: Mit freundlichen Grüßen.")) << "and goes on as if nothing had been";
}

TEST_F(Interruptions, AProgramThatIsToEnd) {
    startQuerlin();
    sayInEditor();
    EXPECT_EQ(querlin.end(SIGTERM), 0);
    release();
    expectRescued(sentence, "Beim Beenden des Programms unterbrochen");
    EXPECT_TRUE(querlin.has("=== Ende ==="));
    EXPECT_TRUE(becomes("Textbereich: "));
}

} // namespace
} // namespace querlin
