// Fields of real programs, as the accessibility bus shows them.

#include "Fields.h"
#include "support/TempFolder.h"

namespace querlin {
namespace {

TEST_F(FieldsTest, OfGtkPrograms) {
    {
        const Program editor({"mousepad", "--disable-server"});
        ASSERT_TRUE(becomes("AXTextArea - "));
        shell("xdotool type 'Grüße'");
        ASSERT_TRUE(becomes("AXTextArea - Grüße"));
        ElementPointer field;
        ASSERT_TRUE(
            eventually([&] { return (field = focused()) && field->attribute(AX::characterCount) == AccessibilityValue(std::int64_t{5}); }));
        EXPECT_TRUE(eventually([&] { return field->stringForRange(2, 2) == "üß"; }));
        EXPECT_TRUE(eventually([&] { return field->stringForRange(3, 1000) == "ße"; })) << "up to the end";
        EXPECT_TRUE(eventually([&] { return field->stringForRange(6, 1) == std::unexpected(-ERANGE); }));
        EXPECT_TRUE(eventually([&] { return searchedField() == "AXTextArea - Grüße"; })) << "the search finds the same";
        {
            const Program dialog({"zenity", "--entry", "--entry-text=Eintrag"});
            ASSERT_TRUE(becomes("AXTextField - Eintrag"));
        }
        ASSERT_TRUE(becomes("AXTextArea - Grüße")) << "back in the window before";
    }
    const Program dialog({"zenity", "--password"});
    ASSERT_TRUE(becomes("AXTextField AXSecureTextField -"));
    shell("xdotool type geheim");
    ElementPointer field;
    ASSERT_TRUE(eventually([&] { return (field = focused()) != nullptr; }));
    for (const auto name : {AX::value, AX::characterCount})
        EXPECT_TRUE(eventually([&] { return field->attribute(name) == std::unexpected(-EACCES); })) << name;
    EXPECT_TRUE(eventually([&] { return field->stringForRange(0, 6) == std::unexpected(-EACCES); }));
}

TEST_F(FieldsTest, OfGtk4) {
    if (!isInstalled("gnome-text-editor")) GTEST_SKIP() << "gnome-text-editor isn't installed.";
    const Program editor({"env", "GSK_RENDERER=cairo", "gnome-text-editor", "--standalone"});
    ASSERT_TRUE(becomes("AXTextArea - "));
    shell("xdotool type 'Grüße'");
    EXPECT_TRUE(becomes("AXTextArea - Grüße"));
}

/// Tab goes from one to the next; the last one is a button.
constexpr auto qtFields = {"AXTextField - Zeile",   "AXTextField AXSecureTextField -", "AXTextArea - erste\nzweite",
                           "AXTextField - Auswahl", "AXUnknown - nur lesen",           "AXUnknown - -"};

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
    ASSERT_TRUE(becomes("AXTextArea - "));
    shell("xdotool type 'Text'");
    ASSERT_TRUE(becomes("AXTextArea - Text"));
    shell("xdotool key ctrl+f");
    EXPECT_TRUE(becomes("AXTextField - ")) << "the line to search by, within a list";
}

TEST_F(FieldsTest, OfATerminal) {
    const Program terminal({"xfce4-terminal", "--disable-server", "-x", "sh", "-c", "echo bereit; cat"});
    EXPECT_TRUE(eventually([&] { return look().starts_with("AXTextArea AXTerminal bereit"); })) << look();
}

TEST_F(FieldsTest, OfAWebPage) {
    if (!isInstalled("firefox-esr")) GTEST_SKIP() << "Firefox isn't installed.";
    const TempFolder folder;
    const Program browser(firefoxWith(folder.path(), "<input value=Eingabe autofocus><input type=search value=Suche>"
                                                     "<input type=password value=geheim><textarea>Fläche</textarea>"
                                                     "<div contenteditable>frei</div><input readonly value=fest>"));
    ASSERT_TRUE(becomes("AXTextField - Eingabe", std::chrono::seconds(40)));
    for (const auto* field : {"AXTextField AXSearchField Suche", "AXTextField AXSecureTextField -", "AXTextArea - Fläche",
                              "AXTextArea - frei", "AXUnknown - fest"}) {
        shell("xdotool key Tab");
        ASSERT_TRUE(becomes(field)) << field;
    }
}

TEST_F(FieldsTest, OfNobodyWithoutAWindowInFront) {
    const Program editor({"mousepad", "--disable-server"});
    ASSERT_TRUE(becomes("AXTextArea - "));
    AtspiAccessibility blind([] { return std::optional<std::int32_t>(); });
    ASSERT_TRUE(blind.isAvailable());
    EXPECT_EQ(blind.systemWide()->attribute(AX::focusedElement), std::unexpected(-ENOENT));
    AtspiAccessibility elsewhere([] { return std::optional<std::int32_t>(1); });
    EXPECT_EQ(elsewhere.systemWide()->attribute(AX::focusedElement), std::unexpected(-ENOENT));
}

TEST(AtspiAccessibility, HintsOnceAtAProgramThatHidesItsTree) {
    const Program fields({QUERLIN_QT_FIELDS}); // Qt asks at its start whether anybody wants to see it.
    ASSERT_TRUE(eventually([] { return FieldsTest::activeWindow().has_value(); }));
    const CapturedLog log;
    AtspiAccessibility accessibility(&FieldsTest::activeWindow);
    const auto isMissed = [&] { return accessibility.application(fields.id())->attribute(AX::focusedElement) == std::unexpected(-ENOENT); };
    EXPECT_TRUE(eventually(isMissed));
    EXPECT_TRUE(eventually(isMissed));
    EXPECT_EQ(log.countOf("qt_fields (PID " + std::to_string(fields.id()) +
                          ") ist auf dem Bedienungshilfen-Bus nicht zu finden – die Art seiner Felder bleibt unbekannt."),
              1U);
}

TEST_F(FieldsTest, OfAWindowWithoutAnyAreHintedAt) {
    ASSERT_TRUE(eventually([&] { return accessibility.isAvailable(); }));
    const Program label({QUERLIN_QT_FIELDS, "no field"});
    ASSERT_TRUE(eventually([] { return activeWindow().has_value(); }));
    const auto isHinted = [&] {
        AtspiAccessibility fresh(&FieldsTest::activeWindow); // One hint for each program; it may have come up only just now.
        EXPECT_FALSE(fresh.isAvailable() && fresh.application(label.id())->attribute(AX::focusedElement));
        return log.countOf("zeigt kein Feld mit der Eingabemarke – die Art seiner Felder bleibt unbekannt.") == 1;
    };
    EXPECT_TRUE(eventually(isHinted));
}

} // namespace
} // namespace querlin
