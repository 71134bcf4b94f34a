// What needs no desktop: the port's words, and whom is waited for how long.

#include "platform/atspi/AtspiRoles.h"
#include "platform/atspi/Patience.h"
#include "platform/atspi/ProcessTree.h"
#include "support/Desktop.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace querlin {
namespace {

using std::chrono::milliseconds;

/// Role, states and attributes as the toolkits were seen to send them, without what nobody asks for.
TEST(AtspiRoles, TellFieldsApart) {
    using enum FieldRole;
    using namespace AtspiState;
    struct Row {
        AtspiDescription element;
        FieldRecord record;
        const char* reason;
    };
    const FieldRecord line{.role = textField}, area{.role = textArea, .hasSeveralLines = true}, list{.role = comboBox}, none{};
    const FieldRecord password{.role = textField, .isPassword = true}, searching{.role = textField, .isSearch = true};
    for (const auto& row : {
             Row{{61, editable | multiLine, {{"toolkit", "gtk"}}}, area, "an editor of GTK 3"},
             Row{{61, editable | singleLine, {{"toolkit", "gtk"}}}, line, "an entry of GTK 3"},
             Row{{40, editable | singleLine, {}}, password, "a password entry of GTK 3"},
             Row{{60, 0, {}}, {.role = terminal, .hasSeveralLines = true}, "a terminal"},
             Row{{61, editable, {}}, line, "a line of Qt says nothing of lines"},
             Row{{61, editable | multiLine, {}}, area, "an editor of Qt"},
             Row{{61, editable | readOnly, {}}, none, "a read-only line of Qt claims to be editable too"},
             Row{{40, editable, {}}, password, "a password line of Qt"},
             Row{{11, 0, {}}, none, "a list to choose from"},
             Row{{79, editable | singleLine, {{"text-input-type", "search"}}}, searching, "a web search field"},
             Row{{79, editable | singleLine, {{"xml-roles", "searchbox"}}}, searching, "one that a page has made itself"},
             Row{{79, editable | multiLine, {{"tag", "textarea"}}}, area, "a textarea"},
             Row{{79, multiLine, {{"tag", "textarea"}}}, none, "a read-only one"},
             Row{{85, editable | multiLine, {{"tag", "div"}}}, area, "an editable part of a page"},
             Row{{73, editable, {}}, area, "a paragraph of a document that can be edited"},
             Row{{52, editable | singleLine, {{"text-input-type", "number"}}}, line, "a web number field"},
             Row{{11, editable | singleLine, {{"xml-roles", "combobox"}}}, list, "a browser's address bar"},
             Row{{79, editable, {{"text-input-type", "password"}, {"xml-roles", "searchbox"}}}, password, "a password before all"},
             Row{{40, readOnly, {}}, password, "a password, editable or not"},
             Row{{43, 0, {}}, none, "a button"},
         })
        EXPECT_EQ(fieldRecord(row.element), row.record) << row.reason;
}

TEST(Patience, EndsAfterAFifthOfASecondOfWaiting) {
    Patience patience;
    const auto start = Instant() + std::chrono::hours(1);
    const auto limit = [&](milliseconds after) { return patience.limit("a", milliseconds(100), start + after); };
    for (int i = 0; i < 1000; ++i) patience.answered("a", milliseconds(9), start);
    EXPECT_EQ(limit(milliseconds(0)), milliseconds(100)) << "quick answers cost nothing";
    patience.answered("a", milliseconds(90), start);
    EXPECT_EQ(limit(milliseconds(90)), milliseconds(100));
    patience.answered("a", milliseconds(90), start + milliseconds(180));
    EXPECT_EQ(limit(milliseconds(180)), milliseconds(20)) << "what is left of it";
    EXPECT_EQ(patience.limit("a", milliseconds(-5), start + milliseconds(180)), Duration::zero()) << "a search that is over";
    EXPECT_EQ(patience.limit("b", milliseconds(-5), start + milliseconds(180)), Duration::zero());
    patience.answered("a", milliseconds(30), start + milliseconds(210));
    EXPECT_EQ(limit(milliseconds(999)), Duration::zero());
    EXPECT_EQ(limit(milliseconds(1000)), milliseconds(100)) << "a new second";
    patience.gaveUp("a", start + milliseconds(1100));
    EXPECT_EQ(limit(milliseconds(2099)), Duration::zero());
    EXPECT_EQ(patience.limit("b", milliseconds(100), start + milliseconds(2099)), milliseconds(100)) << "others are others";
    EXPECT_EQ(limit(milliseconds(2100)), milliseconds(100));
}

TEST(ProcessTree, KnowsRelativesWithinASession) {
    const Program child({"sleep", "60"});
    const Program nested({"sh", "-c", "sleep 60; true"});
    const Program ownSession({"setsid", "--fork", "--wait", "sleep", "60"});
    const auto childOf = [](const Program& program) { return shell("pgrep -P " + std::to_string(program.id())); };
    ASSERT_TRUE(eventually([&] { return !childOf(nested).empty() && !childOf(ownSession).empty(); }));
    const auto grandchild = std::stoi(childOf(nested));
    const auto apart = std::stoi(childOf(ownSession));
    ASSERT_TRUE(eventually([&] { return ::getsid(apart) == apart; }));
    EXPECT_TRUE(ProcessTree::areRelated(child.id(), child.id()));
    EXPECT_TRUE(ProcessTree::areRelated(::getpid(), grandchild)) << "an element in a child of the window's process";
    EXPECT_TRUE(ProcessTree::areRelated(grandchild, ::getpid())) << "and the other way round";
    EXPECT_FALSE(ProcessTree::areRelated(child.id(), grandchild)) << "cousins";
    EXPECT_FALSE(ProcessTree::areRelated(::getpid(), apart)) << "what was started from a terminal";
    EXPECT_FALSE(ProcessTree::areRelated(::getpid(), 0));
    EXPECT_EQ(ProcessTree::name(child.id()), "sleep");
    ::kill(apart, SIGKILL);
}

} // namespace
} // namespace querlin
