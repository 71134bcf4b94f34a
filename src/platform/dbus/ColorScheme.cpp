#include "platform/dbus/ColorScheme.h"

#include "platform/dbus/BusCalls.h"
#include "platform/dbus/DBusThread.h"
#include "platform/dbus/NameOwner.h"

#include <optional>
#include <string>

namespace querlin {

namespace {

constexpr const char* portal = "org.freedesktop.portal.Desktop";
constexpr const char* settings = "org.freedesktop.portal.Settings";
constexpr const char* appearance = "org.freedesktop.appearance";
constexpr const char* key = "color-scheme";

/// The number in a variant, or in a variant in one.
std::optional<std::uint32_t> readNumber(sd_bus_message* message) {
    const char* contents = nullptr;
    if (sd_bus_message_peek_type(message, nullptr, &contents) <= 0 || !contents) return std::nullopt;
    const std::string type = contents;
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, type.c_str()) <= 0) return std::nullopt;
    if (type == "v") return readNumber(message);
    std::uint32_t number = 0;
    if (type != "u" || sd_bus_message_read_basic(message, SD_BUS_TYPE_UINT32, &number) <= 0)
        return std::nullopt;
    return number;
}

} // namespace

/// The buses' thread.
class ColorScheme::Client final : public BusClient {
public:
    explicit Client(std::function<void(bool)> changed) : changed_(std::move(changed)) {}

    void connected(BusKind kind, sd_bus* bus) override {
        if (kind != BusKind::session) return;
        portal_.connected(bus);
        listening_ = BusCalls::listen(
            bus, std::string("type='signal',interface='") + settings + "',member='SettingChanged'",
            [this](sd_bus_message* signal) {
                if (portal_.hasSent(signal) && BusCalls::readText(signal) == appearance &&
                    BusCalls::readText(signal) == key)
                    report(signal);
            });
        const auto question = BusCalls::message(
            bus, {portal, "/org/freedesktop/portal/desktop", settings, "Read"}, "ss", appearance, key);
        asking_ = BusCalls::send(bus, question, std::chrono::seconds(25), [this](sd_bus_message* answer) {
            if (BusCalls::errorName(answer).empty()) report(answer);
        });
    }

    void lost(BusKind kind) override {
        if (kind != BusKind::session) return;
        listening_.reset();
        asking_.reset();
        portal_.lost();
    }

private:
    void report(sd_bus_message* message) {
        constexpr std::uint32_t prefersDark = 1;
        if (const auto scheme = readNumber(message)) changed_(*scheme == prefersDark);
    }

    const std::function<void(bool)> changed_;
    NameOwner portal_{portal, [] {}};
    BusSlot listening_;
    BusSlot asking_;
};

ColorScheme::ColorScheme(MainQueue& queue, DBusThread& buses, std::function<void(bool)> changed) {
    client_ = std::make_shared<Client>(lifetime_.onMain(queue, std::move(changed)));
    joined_ = buses.add(client_);
}

ColorScheme::~ColorScheme() = default;

} // namespace querlin
