#include "platform/dbus/DesktopSignals.h"

#include "platform/dbus/DBusThread.h"
#include "platform/dbus/LoginWatch.h"
#include "platform/dbus/ScreenSaverWatch.h"
#include "platform/dbus/SignalEchoes.h"

#include <ranges>
#include <vector>

namespace querlin {

/// Listens on the buses' thread and posts what has happened.
class DesktopSignals::Watch final : public BusClient {
public:
    using Post = std::function<void(SystemSignal, SystemHold, Instant)>;

    explicit Watch(Post post) :
        post_(std::move(post)),
        login_({[this](SystemSignal signal, SystemHold hold) { happened(signal, std::move(hold)); },
                [this] { echoes_.forget(SystemSignal::screenLocked); }}),
        savers_([this](bool isCovered) {
            if (isCovered) {
                happened(SystemSignal::screenLocked, nullptr);
            } else {
                echoes_.forget(SystemSignal::screenLocked);
            }
        }) {}

    void connected(BusKind kind, sd_bus* bus) override {
        if (kind == BusKind::system) {
            login_.connected(bus);
        } else {
            savers_.connected(bus);
        }
    }
    void lost(BusKind kind) override {
        if (kind == BusKind::system) {
            login_.lost();
        } else {
            savers_.lost();
        }
    }
    void leaving() override { login_.setHolding(false); }
    void setHolding(bool isHolding) { login_.setHolding(isHolding); }

private:
    /// What somebody waits for is no echo, whatever was told before.
    void happened(SystemSignal signal, SystemHold hold) {
        const auto now = std::chrono::steady_clock::now();
        if (echoes_.isNew(signal, now) || hold) post_(signal, std::move(hold), now);
    }

    Post post_;
    SignalEchoes echoes_;
    LoginWatch login_;
    ScreenSaverWatch savers_;
};

DesktopSignals::DesktopSignals(MainQueue& queue, DBusThread& buses) : buses_(buses) {
    watch_ = std::make_shared<Watch>(
        lifetime_.onMain(queue, [this](SystemSignal signal, const SystemHold& hold, Instant happened) {
            handOn(signal, hold, happened);
        }));
    joined_ = buses_.add(watch_);
}

DesktopSignals::~DesktopSignals() = default;

Registration DesktopSignals::observe(Observer observer) {
    const auto number = ++lastNumber_;
    const Observation observation{std::move(observer), std::chrono::steady_clock::now()};
    observations_.emplace(number, std::make_shared<const Observation>(observation));
    if (observations_.size() == 1) hold(true);
    return Registration([this, number] { withdraw(number); });
}

void DesktopSignals::withdraw(std::uint64_t number) {
    observations_.erase(number);
    if (observations_.empty()) hold(false);
}

void DesktopSignals::hold(bool isHolding) {
    buses_.post([watch = watch_, isHolding] { watch->setHolding(isHolding); });
}

/// Observers may come and go in the calls.
void DesktopSignals::handOn(SystemSignal signal, const SystemHold& hold, Instant happened) {
    const auto all = observations_;
    for (const auto& [number, observation] : all) {
        if (observation->since <= happened && observations_.contains(number))
            observation->observer(signal, hold);
    }
}

} // namespace querlin
