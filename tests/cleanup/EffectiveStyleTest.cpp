#include "cleanup/EffectiveStyle.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Field = DictationContext::FieldKind;
using enum WritingStyle;

TEST(EffectiveStyle, SearchFieldThenFirstProfileThenGeneralSetting) {
    auto profiles = AppProfile::builtIn();
    profiles.push_back({"com.apple.mail", "Zweite Post", locker, false});
    struct Row {
        std::optional<std::string> application;
        Field field;
        EffectiveStyle expected;
        const char* reason;
    };
    const std::vector<Row> rows = {
        {"com.apple.mail", Field::search, {neutral, false, "Suchfeld – roh und schnell", true}, "beats the profile"},
        {"com.apple.mail", Field::multiLine, {brief, true, "Profil Mail", false}, "the first of two"},
        {"com.apple.Safari", Field::singleLine, {neutral, false, "Profil Safari", false}, "no polish, but prose"},
        {"com.apple.mail", Field::secure, {brief, true, "Profil Mail", false}, "a password field is refused elsewhere"},
        {"COM.APPLE.MAIL", Field::multiLine, {locker, true, "allgemeine Einstellung", false}, "compared exactly"},
        {std::nullopt, Field::unknown, {locker, true, "allgemeine Einstellung", false}, "no identifier"},
    };
    for (const auto& row : rows) {
        const DictationContext context{"App", row.application, row.field};
        EXPECT_EQ(EffectiveStyle::resolve(context, profiles, locker, true), row.expected) << row.reason;
    }
    EXPECT_EQ(EffectiveStyle::resolve({"Mail", "com.apple.mail", Field::multiLine}, {}, neutral, false),
              (EffectiveStyle{neutral, false, "allgemeine Einstellung", false}))
        << "without profiles";
}

} // namespace
} // namespace querlin
