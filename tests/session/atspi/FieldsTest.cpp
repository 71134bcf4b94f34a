// Fields of real programs, as the accessibility bus shows them.

#include "Fields.h"
#include "support/TempFolder.h"

namespace querlin {
namespace {

TEST_F(FieldsTest, OfGtkPrograms) {
    {
        const Program editor({"mousepad", "--disable-server"});
        ASSERT_TRUE(becomes("Textbereich: "));
        shell("xdotool type 'Grüße'");
        ASSERT_TRUE(becomes("Textbereich: Grüße"));
        const auto field = accessibility.focusedField().value();
        const auto isSeen = [&](const FieldRecord& wanted) { return field->look(FieldLook::contents) == wanted; };
        FieldRecord wanted{.role = FieldRole::textArea,
                           .hasSeveralLines = true,
                           .processIdentifier = editor.id(),
                           .text = "Grüße",
                           .length = 5,
                           .selection = TextRange{5, 0}};
        EXPECT_TRUE(eventually([&] { return isSeen(wanted); })) << "all in one look";
        shell("xdotool key shift+Left shift+Left");
        wanted.selection = TextRange{3, 2};
        EXPECT_TRUE(eventually([&] { return isSeen(wanted); }));
        EXPECT_EQ(field->look(FieldLook::kind)->text, std::unexpected(FieldFault::notAsked));
        for (const auto& [range, text] : std::map<std::pair<int, int>, std::expected<std::string, FieldFault>>{
                 {{2, 2}, "üß"}, {{3, 1000}, "ße"}, {{6, 1}, std::unexpected(FieldFault::outOfRange)}})
            EXPECT_TRUE(eventually([&] { return field->text({range.first, range.second}) == text; })) << range.first;
        EXPECT_TRUE(eventually([&] { return searchedField() == "Textbereich: Grüße"; })) << "the search finds the same";
        {
            const Program dialog({"zenity", "--entry", "--entry-text=Eintrag"});
            ASSERT_TRUE(becomes("Textfeld: Eintrag"));
        }
        ASSERT_TRUE(becomes("Textbereich: Grüße")) << "back in the window before";
    }
    const Program dialog({"zenity", "--password"});
    ASSERT_TRUE(becomes("Textfeld (Passwort): -"));
    shell("xdotool type geheim");
    const auto field = accessibility.focusedField().value();
    const FieldRecord secret{
        .role = FieldRole::textField, .isPassword = true, .processIdentifier = dialog.id(), .text = std::unexpected(FieldFault::password)};
    EXPECT_TRUE(eventually([&] { return field->look(FieldLook::contents) == secret; })) << "neither text nor its length";
    EXPECT_TRUE(eventually([&] { return field->text({0, 6}) == std::unexpected(FieldFault::password); }));
}

TEST_F(FieldsTest, OfGtk4) {
    if (!isInstalled("gnome-text-editor")) GTEST_SKIP() << "gnome-text-editor isn't installed.";
    const Program editor({"env", "GSK_RENDERER=cairo", "gnome-text-editor", "--standalone"});
    ASSERT_TRUE(becomes("Textbereich: "));
    shell("xdotool type 'Grüße'");
    EXPECT_TRUE(becomes("Textbereich: Grüße"));
}

/// Tab goes from one to the next; the last one is a button.
constexpr auto qtFields = {"Textfeld: Zeile",   "Textfeld (Passwort): -", "Textbereich: erste\nzweite",
                           "Textfeld: Auswahl", "unbekannt: nur lesen",   "unbekannt: -"};

TEST_F(FieldsTest, OfAQtProgram) {
    ASSERT_TRUE(eventually([&] { return accessibility.isAvailable(); }));
    const Program fields({QUERLIN_QT_FIELDS});
    for (const auto* field : qtFields) {
        ASSERT_TRUE(becomes(field)) << field;
        EXPECT_NE(searchedField(), "nothing") << "also in the tree: " << field;
        shell("xdotool key Tab");
    }
    ASSERT_TRUE(becomes(*qtFields.begin())) << "round";
}

TEST_F(FieldsTest, OfAQt5Program) {
    if (!isInstalled("featherpad")) GTEST_SKIP() << "featherpad isn't installed.";
    ASSERT_TRUE(eventually([&] { return accessibility.isAvailable(); }));
    const Program editor({"featherpad", "--standalone"});
    ASSERT_TRUE(becomes("Textbereich: "));
    shell("xdotool type 'Text'");
    ASSERT_TRUE(becomes("Textbereich: Text"));
    shell("xdotool key ctrl+f");
    EXPECT_TRUE(becomes("Textfeld: ")) << "the line to search by, within a list";
}

TEST_F(FieldsTest, OfATerminal) {
    const Program terminal({"xfce4-terminal", "--disable-server", "-x", "sh", "-c", "echo bereit; cat"});
    EXPECT_TRUE(eventually([&] { return look().starts_with("Terminal: bereit"); })) << look();
}

TEST_F(FieldsTest, OfAWebPage) {
    if (!isInstalled("firefox-esr")) GTEST_SKIP() << "Firefox isn't installed.";
    const TempFolder folder;
    const Program browser(firefoxWith(folder.path(), "<input value=Eingabe autofocus><input type=search value=Suche>"
                                                     "<input type=password value=geheim><textarea>Fläche</textarea>"
                                                     "<div contenteditable>frei</div><input readonly value=fest>"));
    ASSERT_TRUE(becomes("Textfeld: Eingabe", std::chrono::seconds(40)));
    for (const auto* field :
         {"Textfeld (Suche): Suche", "Textfeld (Passwort): -", "Textbereich: Fläche", "Textbereich: frei", "unbekannt: fest"}) {
        shell("xdotool key Tab");
        ASSERT_TRUE(becomes(field)) << field;
    }
}

TEST_F(FieldsTest, OfNobodyWithoutAWindowInFront) {
    const Program editor({"mousepad", "--disable-server"});
    ASSERT_TRUE(becomes("Textbereich: "));
    AtspiAccessibility blind([] { return std::optional<std::int32_t>(); });
    ASSERT_TRUE(blind.isAvailable());
    EXPECT_EQ(blind.focusedField(), std::unexpected(FieldFault::noField));
    AtspiAccessibility elsewhere([] { return std::optional<std::int32_t>(1); });
    EXPECT_EQ(elsewhere.heardField(), std::unexpected(FieldFault::noField));
}

} // namespace
} // namespace querlin
