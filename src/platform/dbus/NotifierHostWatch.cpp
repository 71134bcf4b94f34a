#include "platform/dbus/NotifierHostWatch.h"

#include "platform/dbus/BusCalls.h"
#include "platform/dbus/DBusThread.h"
#include "platform/dbus/NameOwner.h"

#include <array>
#include <functional>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr const char* watcher = "org.kde.StatusNotifierWatcher";
constexpr const char* watcherPath = "/StatusNotifierWatcher";
/// A watcher that hangs answers when it wakes up, or the bus answers when it dies.
constexpr Duration longestWait = std::chrono::hours(24);

} // namespace

/// The buses' thread. Whatever is reported, the watcher is asked for what is so now.
class NotifierHostWatch::Client final : public BusClient {
public:
    explicit Client(std::function<void(bool)> learned) : learned_(std::move(learned)) {}

    void connected(BusKind kind, sd_bus* bus) override {
        if (kind != BusKind::session) return;
        bus_ = bus;
        service_.connected(bus);
        constexpr std::array signals = {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"};
        for (std::size_t index = 0; index < signals.size(); ++index) {
            const auto rule =
                fmt::format("type='signal',sender='{0}',path='{1}',interface='{0}',member='{2}'", watcher,
                            watcherPath, signals.at(index));
            listening_.at(index) = BusCalls::listen(bus, rule, [this](sd_bus_message* signal) {
                if (service_.hasSent(signal)) ask();
            });
        }
    }

    void lost(BusKind kind) override {
        if (kind != BusKind::session) return;
        asking_.reset();
        listening_ = {};
        service_.lost();
        bus_ = nullptr;
        learned_(false);
    }

private:
    void ask() {
        if (!service_.isOwned()) {
            asking_.reset();
            learned_(false);
            return;
        }
        const auto question =
            BusCalls::message(bus_, {watcher, watcherPath, "org.freedesktop.DBus.Properties", "Get"}, "ss",
                              watcher, "IsStatusNotifierHostRegistered");
        if (question) sd_bus_message_set_auto_start(question.get(), 0);
        asking_ = BusCalls::send(bus_, question, longestWait, [this](sd_bus_message* answer) {
            int isThere = 0;
            learned_(sd_bus_message_read(answer, "v", "b", &isThere) > 0 && isThere != 0);
        });
    }

    const std::function<void(bool)> learned_;
    sd_bus* bus_ = nullptr;
    NameOwner service_{watcher, [this] { ask(); }};
    std::array<BusSlot, 2> listening_;
    BusSlot asking_;
};

NotifierHostWatch::NotifierHostWatch(MainQueue& queue, DBusThread& buses) {
    client_ = std::make_shared<Client>(lifetime_.onMain(queue, [this](bool isThere) {
        if (isThere_.get() != isThere) isThere_.set(isThere);
    }));
    joined_ = buses.add(client_);
}

NotifierHostWatch::~NotifierHostWatch() = default;

} // namespace querlin
