#include "platform/system/SystemPermissions.h"
#include "platform/system/SettingsPrograms.h"
#include "support/CapturedLog.h"
#include "support/Desktop.h"
#include "support/TempFolder.h"

#include <cstdlib>

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;

/// The environment's PATH and desktop, as long as it lives.
class DesktopWith {
public:
    DesktopWith(const char* desktop, const TempFolder& folder, std::initializer_list<const char*> programs) : path_(std::getenv("PATH")) {
        for (const char* program : programs) {
            writeFile(folder / program, "#!/bin/sh\necho \"$(basename \"$0\") $*\" > '" + (folder / "called").string() + "'\n");
            fs::permissions(folder / program, fs::perms::owner_all);
        }
        ::setenv("PATH", (folder.path().string() + ":/usr/bin:/bin").c_str(), 1);
        ::setenv("XDG_CURRENT_DESKTOP", desktop, 1);
    }
    ~DesktopWith() {
        ::setenv("PATH", path_.c_str(), 1);
        ::unsetenv("XDG_CURRENT_DESKTOP");
    }
    DesktopWith(const DesktopWith&) = delete;
    DesktopWith& operator=(const DesktopWith&) = delete;

private:
    std::string path_;
};

SystemPermissions::Sources allThere(const TempFolder& folder) {
    const auto yes = [] { return true; };
    return {yes, yes, yes, yes, yes, folder / "Modelle"};
}

TEST(SystemPermissions, OpenTheSettingsOfTheDesktopOrSayThatThereAreNone) {
    struct Row {
        const char* desktop;
        std::initializer_list<const char*> programs;
        const char* pane;
        const char* called; ///< null: nothing
    };
    for (const auto& row :
         {Row{"ubuntu:GNOME", {"gnome-control-center", "pavucontrol"}, "Privacy_Microphone", "gnome-control-center sound"},
          Row{"Openbox", {"gnome-control-center", "pavucontrol"}, "Privacy_Microphone", "pavucontrol"},
          Row{"XFCE", {"xfce4-accessibility-settings"}, "Privacy_Accessibility", "xfce4-accessibility-settings"},
          Row{"GNOME", {}, "Privacy_Accessibility", nullptr}, Row{"", {"xdg-open"}, "Privacy_SpeechRecognition", "xdg-open"}}) {
        const TempFolder folder;
        const CapturedLog log;
        const DesktopWith desktop(row.desktop, folder, row.programs);
        SystemPermissions(allThere(folder)).openSettings(row.pane);
        EXPECT_EQ(log.countOf("ist hier kein Einstellungsprogramm zu finden."), row.called ? 0U : 1U) << row.pane;
        if (row.called) {
            EXPECT_TRUE(eventually([&] { return contentOf(folder / "called").starts_with(row.called); })) << row.called;
        }
    }
}

TEST(SystemPermissions, TrustNeedsTheKeysAndTheAccessibilityBus) {
    const TempFolder folder;
    auto sources = allThere(folder);
    EXPECT_TRUE(SystemPermissions(sources).isProcessTrusted());
    sources.canLookIntoApplications = [] { return false; };
    SystemPermissions without(sources);
    EXPECT_FALSE(without.isProcessTrusted());
    EXPECT_TRUE(without.requestTrust()) << "the bus can be switched on";
    sources.canListenToKeys = [] { return false; };
    EXPECT_FALSE(SystemPermissions(sources).requestTrust());
    sources.hasMicrophone = [] { return false; };
    EXPECT_EQ(SystemPermissions(sources).microphoneStatus(), AuthorizationStatus::denied);
}

} // namespace
} // namespace querlin
