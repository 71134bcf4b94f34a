// What needs no desktop: the port's words, and who belongs to whom.

#include "platform/atspi/AtspiRoles.h"
#include "platform/atspi/ProcessTree.h"
#include "support/Desktop.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace querlin {
namespace {

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
             Row{{11, 0, {}}, none, "a list to choose from"},
             Row{{79, editable | singleLine, {{"xml-roles", "searchbox"}}}, searching, "one that a page has made itself"},
             Row{{79, multiLine, {{"tag", "textarea"}}}, none, "a read-only one"},
             Row{{73, editable, {}}, area, "a paragraph of a document that can be edited"},
             Row{{52, editable | singleLine, {{"text-input-type", "number"}}}, line, "a web number field"},
             Row{{11, editable | singleLine, {{"xml-roles", "combobox"}}}, list, "a browser's address bar"},
             Row{{79, editable, {{"text-input-type", "password"}, {"xml-roles", "searchbox"}}}, password, "a password before all"},
             Row{{40, readOnly, {}}, password, "a password, editable or not"},
         })
        EXPECT_EQ(fieldRecord(row.element), row.record) << row.reason;
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
