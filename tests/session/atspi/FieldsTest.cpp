// Fields of real programs, as the accessibility bus shows them.

#include "platform/atspi/AtspiAccessibility.h"
#include "support/CapturedLog.h"
#include "support/Desktop.h"
#include "support/TempFolder.h"

#include <csignal>
#include <cstdlib>

#include <gtest/gtest.h>

namespace querlin {
namespace {

/// "role subrole value"; what can't be had is "-".
std::string described(AccessibilityElement& element) {
    std::string words;
    for (const auto name : {AX::role, AX::subrole, AX::value}) {
        const auto value = element.attribute(name);
        const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
        words += (words.empty() ? "" : " ") + (text ? *text : "-");
    }
    return words;
}

struct FieldsTest : testing::Test {
    CapturedLog log;
    std::optional<std::int32_t> front() {
        const auto id = shell("xdotool getactivewindow getwindowpid");
        return id.empty() ? std::nullopt : std::optional(std::atoi(id.c_str()));
    }
    AtspiAccessibility accessibility{[this] { return front(); }};

    ElementPointer focused(bool bySearch = false) {
        const auto root = bySearch ? accessibility.application(front().value_or(0)) : accessibility.systemWide();
        const auto value = root->attribute(AX::focusedElement);
        return value ? std::get<ElementPointer>(*value) : nullptr;
    }
    std::string look() {
        auto element = focused();
        if (!element) element = focused(true);
        return element ? described(*element) : "nothing";
    }
    /// Waits until the field with the focus is described like this.
    testing::AssertionResult becomes(const std::string& wanted, Duration longest = std::chrono::seconds(10)) {
        if (eventually([&] { return look() == wanted; }, longest)) return testing::AssertionSuccess();
        return testing::AssertionFailure() << look();
    }
};

TEST(AtspiRoles, TellFieldsApart) {
    using namespace AtspiState;
    struct Row {
        AtspiDescription element;
        AtspiRoles roles;
        const char* reason;
    };
    for (const auto& row :
         {Row{{61, editable | multiLine, {}}, {AX::textArea, ""}, "an editor of GTK 3"},
          Row{{61, editable | singleLine, {}}, {AX::textField, ""}, "an entry of GTK 3"},
          Row{{61, editable, {}}, {AX::textField, ""}, "a line of Qt 6"},
          Row{{79, editable | singleLine, {{"text-input-type", "search"}}}, {AX::textField, AX::searchField}, "a web search field"},
          Row{{79, editable, {{"text-input-type", "password"}}}, {AX::textField, AX::secureTextField}, "a password by its type"},
          Row{{40, 0, {}}, {AX::textField, AX::secureTextField}, "a password by its role, editable or not"},
          Row{{60, 0, {}}, {AX::textArea, AX::terminal}, "a terminal"},
          Row{{85, editable, {}}, {AX::textArea, ""}, "an editable part of a page"},
          Row{{61, singleLine, {}}, {"AXUnknown", ""}, "read only"}, Row{{43, 0, {}}, {"AXUnknown", ""}, "a button"}})
        EXPECT_EQ(AtspiRoles::of(row.element), row.roles) << row.reason;
}

TEST_F(FieldsTest, OfGtkPrograms) {
    {
        const Program editor({"mousepad", "--disable-server"});
        ASSERT_TRUE(becomes("AXTextArea - "));
        shell("xdotool type 'Grüße'");
        ASSERT_TRUE(becomes("AXTextArea - Grüße"));
        const auto field = focused();
        EXPECT_EQ(std::get<std::int64_t>(field->attribute(AX::characterCount).value()), 5);
        EXPECT_EQ(field->stringForRange(2, 2), "üß");
        EXPECT_EQ(described(*focused(true)), "AXTextArea - Grüße") << "the search finds the same";
        {
            const Program dialog({"zenity", "--entry", "--entry-text=Eintrag"});
            ASSERT_TRUE(becomes("AXTextField - Eintrag"));
        }
        ASSERT_TRUE(becomes("AXTextArea - Grüße")) << "back in the window before";
    }
    const Program dialog({"zenity", "--password"});
    ASSERT_TRUE(becomes("AXTextField AXSecureTextField -"));
    shell("xdotool type geheim");
    EXPECT_EQ(focused()->attribute(AX::value), std::unexpected(-EACCES));
    EXPECT_EQ(focused()->attribute(AX::characterCount), std::unexpected(-EACCES));
    EXPECT_FALSE(focused()->stringForRange(0, 6));
}

TEST_F(FieldsTest, OfAQtProgram) {
    const Program fields({QUERLIN_QT_FIELDS});
    for (const auto* field : {"AXTextField - Zeile", "AXTextField AXSecureTextField -", "AXTextArea - erste\nzweite",
                              "AXTextField - Auswahl", "AXUnknown - nur lesen", "AXUnknown - -"}) {
        ASSERT_TRUE(becomes(field)) << field;
        shell("xdotool key Tab");
    }
    ASSERT_TRUE(becomes("AXTextField - Zeile"));
}

TEST_F(FieldsTest, OfATerminal) {
    const Program terminal({"xfce4-terminal", "--disable-server", "-x", "sh", "-c", "echo bereit; cat"});
    EXPECT_TRUE(eventually([&] { return look().starts_with("AXTextArea AXTerminal bereit"); })) << look();
}

TEST_F(FieldsTest, OfAWebPage) {
    if (!isInstalled("firefox-esr")) GTEST_SKIP() << "Firefox isn't installed.";
    const TempFolder folder;
    writeFile(folder / "page.html", "<meta charset=utf-8><title>Seite</title><input value=Eingabe autofocus><input type=search value=Suche>"
                                    "<input type=password value=geheim><textarea>Fläche</textarea><div contenteditable>frei</div>");
    const Program browser({"firefox-esr", "--no-remote", "--profile", folder.path().string(), (folder / "page.html").string()});
    ASSERT_TRUE(becomes("AXTextField - Eingabe", std::chrono::seconds(40)));
    for (const auto* field :
         {"AXTextField AXSearchField Suche", "AXTextField AXSecureTextField -", "AXTextArea - Fläche", "AXTextArea - frei"}) {
        shell("xdotool key Tab");
        ASSERT_TRUE(becomes(field)) << field;
    }
}

TEST_F(FieldsTest, AProgramThatHangsHoldsNobodyUp) {
    const Program editor({"mousepad", "--disable-server"});
    ASSERT_TRUE(becomes("AXTextArea - "));
    const auto process = front();
    editor.signal(SIGSTOP);
    for (int i = 0; i < 3; ++i) {
        const auto begun = std::chrono::steady_clock::now();
        auto element = accessibility.systemWide()->attribute(AX::focusedElement);
        if (!element) element = accessibility.application(process.value())->attribute(AX::focusedElement);
        if (element) (void)described(*std::get<ElementPointer>(*element));
        EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::milliseconds(250));
    }
    editor.signal(SIGCONT);
    EXPECT_TRUE(becomes("AXTextArea - "));
}

TEST_F(FieldsTest, ABusThatDiesIsFoundAgain) {
    const Program editor({"mousepad", "--disable-server"});
    ASSERT_TRUE(becomes("AXTextArea - "));
    EXPECT_TRUE(accessibility.isAvailable());
    shell("pkill -KILL -f 'dbus-daemon.*accessibility'; pkill -KILL -f at-spi-bus-launcher");
    EXPECT_TRUE(eventually([&] { return !focused(); })) << "neither a crash nor an old answer";
    EXPECT_TRUE(eventually([&] { return accessibility.requestEnable(); })) << "the session's bus starts another one";
    const Program another({"zenity", "--entry", "--entry-text=neu"});
    EXPECT_TRUE(becomes("AXTextField - neu"));
}

TEST(AtspiAccessibility, WithoutABusThereIsNothing) {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere", 1);
    const CapturedLog log;
    AtspiAccessibility accessibility([] { return std::optional<std::int32_t>(); });
    EXPECT_FALSE(accessibility.isAvailable());
    EXPECT_EQ(accessibility.systemWide()->attribute(AX::focusedElement), std::unexpected(-ENOTCONN));
    EXPECT_EQ(log.countOf("[context] Der Bedienungshilfen-Bus ist nicht erreichbar ("), 1U);
}

TEST_F(FieldsTest, AProgramWithoutATreeIsHintedAtOnce) {
    const Program target({"env", "NO_AT_BRIDGE=1", "mousepad", "--disable-server"});
    const auto isUp = [&] { return front().has_value(); };
    ASSERT_TRUE(eventually(isUp));
    EXPECT_FALSE(focused(true));
    EXPECT_FALSE(focused(true));
    EXPECT_EQ(log.countOf("ist auf dem Bedienungshilfen-Bus nicht zu finden – die Art seiner Felder bleibt unbekannt."), 1U);
}

} // namespace
} // namespace querlin
