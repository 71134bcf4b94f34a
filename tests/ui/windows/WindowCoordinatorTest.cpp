#include "ui/windows/WindowCoordinator.h"

#include "support/WindowsWorld.h"

#include <QLabel>
#include <QPushButton>

namespace querlin {
namespace {

class WindowCoordinatorTest : public ::testing::Test, protected WindowsWorld {
protected:
    static std::vector<std::string> suggested() {
        std::vector<std::string> words;
        for (const auto* panel : windowsNamed("Querlin Vorschlag")) {
            for (const auto* label : panel->findChildren<QLabel*>()) words.push_back(Brand::utf8(label->text()));
        }
        return words;
    }
    static void press(const std::string& button) {
        for (const auto* panel : windowsNamed("Querlin Vorschlag")) {
            for (auto* child : panel->findChildren<QPushButton*>()) {
                if (child->text() == Brand::text(button)) child->click();
            }
        }
    }
    static CorrectionSuggestion suggestion(std::string recognized, std::string corrected) {
        return {.id = "1", .recognized = std::move(recognized), .corrected = std::move(corrected), .appName = "Notizen"};
    }
};

TEST_F(WindowCoordinatorTest, there_is_one_window_of_each_kind_and_it_comes_back_as_it_was) {
    const std::vector<std::pair<std::string, std::function<void()>>> rows = {
        {"Querlin – Einstellungen", [this] { windows.showSettings(SettingsSection::laws); }},
        {"Querlin einrichten", [this] { windows.showOnboarding(); }},
        {"Gesetze nachschlagen – BGB und FamFG", [this] { windows.showLegalLookup(); }},
    };
    for (const auto& [title, show] : rows) {
        show();
        const auto first = windowsNamed(title);
        ASSERT_EQ(first.size(), 1U) << title;
        show();
        EXPECT_EQ(windowsNamed(title), first) << title << ": a second call brings it forward";
        first[0]->close();
        show();
        EXPECT_EQ(windowsNamed(title), first) << title << ": the same window";
        first[0]->close();
    }
}

TEST_F(WindowCoordinatorTest, the_end_of_the_setup_tries_the_key_again) {
    windows.showOnboarding();
    auto* window = windowsNamed("Querlin einrichten").at(0);
    world.holdKey.canListen = false;
    world.controller.installHotkey();
    world.holdKey.canListen = true;
    window->findChild<QPushButton*>()->click();
    EXPECT_TRUE(world.settings.hasCompletedOnboarding.get());
    EXPECT_FALSE(world.controller.hotkeyBlocked().get());
    EXPECT_TRUE(windowsNamed("Querlin einrichten").empty());
    windows.showOnboarding();
    EXPECT_NE(windowsNamed("Querlin einrichten").at(0), window) << "a new one";
}

TEST_F(WindowCoordinatorTest, a_notice_stays_thirty_seconds) {
    windows.showEnhancementFailureNotice("Erster");
    world.wait(seconds(29));
    windows.showEnhancementFailureNotice("Zweiter");
    world.wait(seconds(29));
    EXPECT_EQ(windows.lastNotice().get(), "Zweiter") << "with thirty seconds of its own";
    world.wait(seconds(1));
    EXPECT_EQ(windows.lastNotice().get(), std::nullopt);
}

TEST_F(WindowCoordinatorTest, a_corrected_word_is_learnt_by_a_click_and_not_otherwise) {
    windows.showCorrectionSuggestion(suggestion("Meier", "<i>Mayer</i>"));
    EXPECT_EQ(suggested(), (std::vector<std::string>{"Ins Wörterbuch übernehmen?", "Meier", "<i>Mayer</i>"}));
    press("Nein");
    EXPECT_TRUE(suggested().empty());

    windows.showCorrectionSuggestion(suggestion("Schmidt", "Schmitt"));
    world.wait(seconds(19));
    windows.showCorrectionSuggestion(suggestion("Meier", "Mayer"));
    world.wait(seconds(19));
    EXPECT_EQ(suggested().size(), 3U) << "the second one stays for its full time";
    world.wait(seconds(1));
    EXPECT_TRUE(suggested().empty());
    EXPECT_TRUE(world.settings.userDictionary.get().empty());

    windows.showCorrectionSuggestion(suggestion("Meier", "Mayer"));
    press("Übernehmen");
    EXPECT_TRUE(suggested().empty());
    EXPECT_EQ(world.settings.userDictionary.get(), std::vector<std::string>{"Mayer"});
    EXPECT_EQ(world.log.countOf("Mayer"), 0U);
}

} // namespace
} // namespace querlin
