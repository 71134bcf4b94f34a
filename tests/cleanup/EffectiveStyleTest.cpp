#include "cleanup/EffectiveStyle.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

using Field = DictationContext::FieldKind;
using enum WritingStyle;

TEST(EffectiveStyle, SearchFieldThenFirstProfileThenGeneralSetting) {
    auto profiles = AppProfile::builtIn();
    profiles.push_back({"thunderbird", "Zweite Post", locker, false});
    profiles.push_back({"de.Beispiel.Akten", "Akten", aktenstil, false});
    const EffectiveStyle mail{brief, true, "Profil Thunderbird", false};
    const EffectiveStyle general{locker, true, "allgemeine Einstellung", false};
    struct Row {
        std::optional<std::string> application;
        Field field;
        EffectiveStyle expected;
        const char* reason;
    };
    const std::vector<Row> rows = {
        {"thunderbird", Field::search, {neutral, false, "Suchfeld – roh und schnell", true}, "beats the profile"},
        {"thunderbird", Field::multiLine, mail, "the first of two"},
        {"thunderbird-default", Field::multiLine, mail, "the class of its windows"},
        {"net.thunderbird.Thunderbird.desktop", Field::multiLine, mail, "from another source"},
        {"thunderbird", Field::secure, mail, "a password field is refused elsewhere"},
        {"Firefox-esr", Field::singleLine, {neutral, false, "Profil Firefox", false}, "no polish, but prose"},
        {"TelegramDesktop", Field::multiLine, {locker, true, "Profil Telegram", false}, "chat"},
        {"Signal", Field::multiLine, {locker, true, "Profil Signal", false}, "chat"},
        {"de.beispiel.akten", Field::multiLine, {aktenstil, false, "Profil Akten", false}, "the user's own"},
        {"libreoffice-calc", Field::multiLine, general, "of the same suite"},
        {"xfce4-terminal", Field::multiLine, general, "no profile"},
        {"", Field::multiLine, general, "an empty identifier"},
        {std::nullopt, Field::unknown, general, "no identifier"},
    };
    for (const auto& row : rows) {
        const DictationContext context{"App", row.application, row.field};
        EXPECT_EQ(EffectiveStyle::resolve(context, profiles, locker, true), row.expected) << row.reason;
    }
    EXPECT_EQ(EffectiveStyle::resolve({"Mail", "thunderbird", Field::multiLine}, {}, neutral, false),
              (EffectiveStyle{neutral, false, "allgemeine Einstellung", false}))
        << "without profiles";
}

} // namespace
} // namespace querlin
