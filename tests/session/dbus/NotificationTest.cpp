#include "Buses.h"

#include "platform/dbus/DBusThread.h"
#include "platform/dbus/DesktopNotifications.h"
#include "support/CapturedLog.h"

#include <gtest/gtest.h>

#include <mutex>

namespace querlin {
namespace {

constexpr Duration quickly = std::chrono::milliseconds(300);

/// What comes on the buses' thread.
class Answers {
public:
    NotificationService::Failure failure() {
        return [this](std::string reason) { add(std::move(reason)); };
    }
    NotificationService::AuthorizationAnswer authorization() {
        return [this](std::expected<bool, std::string> answer) { add(!answer ? answer.error() : *answer ? "ja" : "nein"); };
    }
    std::vector<std::string> all() const {
        const std::scoped_lock guard(mutex_);
        return answers_;
    }
    bool become(const std::vector<std::string>& expected) const {
        return eventually([&] { return all().size() >= expected.size(); }) && all() == expected;
    }

private:
    void add(std::string answer) {
        const std::scoped_lock guard(mutex_);
        answers_.push_back(std::move(answer));
    }

    mutable std::mutex mutex_;
    std::vector<std::string> answers_;
};

/// Of the newest notification that dunst has shown and put away.
std::string shown(const std::string& field) {
    return shell("dunstctl close-all; dunstctl history | /usr/bin/python3 -c 'import json, sys; "
                 "print(json.load(sys.stdin)[\"data\"][0][0][\"" +
                 field + "\"][\"data\"])'");
}

std::string dunst() {
    return shell("gdbus call --session -d org.freedesktop.DBus -o /org/freedesktop/DBus "
                 "-m org.freedesktop.DBus.GetConnectionUnixProcessID org.freedesktop.Notifications | tr -dc '0-9 ' | cut -d' ' -f2");
}

TEST(DesktopNotifications, AreShownAsTheyAreWritten) {
    const TempFolder folder;
    const auto onTheBus = folder / "calls";
    const Program monitor({"sh", "-c", "exec dbus-monitor --session \"member='Notify'\" > " + onTheBus.string()});
    ASSERT_TRUE(eventually([&] { return !contentOf(onTheBus).empty(); }));
    Answers answers;
    DBusThread buses;
    DesktopNotifications notifications(buses);
    notifications.requestAuthorization(answers.authorization());
    EXPECT_TRUE(answers.become({"ja"}));
    notifications.post("Nicht\nzugestellt – „ß“ & <Zwischenablage>", "Müller & Söhne <b>fett</b>\x01\xFF\nZeile 2 \U0001F600\uFFFE",
                       answers.failure());
    EXPECT_TRUE(eventually([] { return shown("summary") == "Nicht zugestellt – „ß“ & <Zwischenablage>"; })) << shown("summary");
    EXPECT_EQ(shown("body"), "Müller &amp; Söhne &lt;b&gt;fett&lt;/b&gt;\uFFFD\nZeile 2 \U0001F600\uFFFD");
    EXPECT_EQ(shown("appname"), "Querlin");
    EXPECT_EQ(shown("category"), "x-querlin.dictation");
    EXPECT_TRUE(eventually([&] { return contentOf(onTheBus).contains("\"local.mandolan.querlin\""); })) << "the desktop entry";
    EXPECT_EQ(answers.all().size(), 1U) << answers.all().back();
}

TEST(DesktopNotifications, AreSentBeforeTheEnd) {
    Answers answers;
    {
        DBusThread buses;
        DesktopNotifications notifications(buses);
        notifications.requestAuthorization(answers.authorization());
        ASSERT_TRUE(answers.become({"ja"}));
        notifications.post("Gerettet", "beim Beenden", answers.failure());
    }
    EXPECT_TRUE(eventually([] { return shown("summary") == "Gerettet"; }));
    EXPECT_EQ(answers.all().size(), 1U);
}

TEST(DesktopNotifications, WithoutAServiceEachOneFailsAndOneLineSaysSo) {
    const CapturedLog log;
    OwnBus session("DBUS_SESSION_BUS_ADDRESS");
    session.start();
    Answers answers;
    DBusThread buses(quickly);
    DesktopNotifications notifications(buses);
    notifications.requestAuthorization(answers.authorization());
    EXPECT_TRUE(answers.become({"nein"}));
    notifications.post("Eins", "", answers.failure());
    EXPECT_TRUE(answers.become({"nein", "Es gibt keinen Mitteilungsdienst."}));
    session.kill();
    ASSERT_TRUE(eventually([&] { return log.countOf("Sitzungsbus") == 1; }));
    notifications.post("Zwei", "", answers.failure());
    notifications.requestAuthorization(answers.authorization());
    EXPECT_TRUE(answers.become({"nein", "Es gibt keinen Mitteilungsdienst.", "Der Sitzungsbus ist nicht erreichbar.", "nein"}));
    EXPECT_EQ(log.countOf("Kein Mitteilungsdienst"), 1U);
}

TEST(DesktopNotifications, AServiceThatHangsHoldsNobodyUp) {
    Answers answers;
    DBusThread buses;
    DesktopNotifications notifications(buses, quickly);
    notifications.post("Vorher", "", answers.failure());
    ASSERT_TRUE(eventually([] { return shown("summary") == "Vorher"; }));
    const auto service = dunst();
    shell("kill -STOP " + service);
    const auto begin = std::chrono::steady_clock::now();
    notifications.post("Hängt", "", answers.failure());
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(20));
    EXPECT_TRUE(answers.become({"Der Mitteilungsdienst antwortet nicht."}));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, quickly);

    // A new one that hangs from the start is asked in vain what it can.
    DesktopNotifications others(buses, quickly);
    others.post("Hängt von Anfang an", "", answers.failure());
    EXPECT_TRUE(answers.become({"Der Mitteilungsdienst antwortet nicht.", "Der Mitteilungsdienst antwortet nicht."}));
    shell("kill -CONT " + service);
    // As often as needed: one that has just woken up may still be slow.
    EXPECT_TRUE(eventually([&] {
        others.post("Nachher", "", answers.failure());
        return shown("summary") == "Nachher";
    }));
}

} // namespace
} // namespace querlin
