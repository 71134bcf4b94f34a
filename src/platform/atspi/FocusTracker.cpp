#include "platform/atspi/FocusTracker.h"

#include "state/DiagnosticsLog.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr Duration longestCall = std::chrono::seconds(1);
constexpr Duration betweenAttempts = std::chrono::seconds(1);
constexpr std::size_t mostApplications = 32;

constexpr auto focusRule = "type='signal',interface='org.a11y.atspi.Event.Object',member='StateChanged',"
                           "arg0='focused'";
constexpr auto registryRule = "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                              "member='NameOwnerChanged',arg0='org.a11y.atspi.Registry'";
AtspiReference launcher() { return {"org.a11y.Bus", "/org/a11y/bus"}; }
AtspiReference registry() { return {"org.a11y.atspi.Registry", "/org/a11y/atspi/registry"}; }

} // namespace

FocusTracker::FocusTracker() {
    thread_ = std::thread([this] { run(); });
}

FocusTracker::~FocusTracker() {
    isEnding_ = true;
    end_.ring();
    thread_.join();
}

void FocusTracker::hurry() { hurry_.ring(); }

void FocusTracker::setAddress(std::optional<std::string> address) {
    const std::scoped_lock guard(mutex_);
    address_ = std::move(address);
    if (!address_) recent_.clear();
    hasAttempted_ = true;
    attempted_.notify_all();
}

std::optional<std::string> FocusTracker::address() const {
    const std::scoped_lock guard(mutex_);
    return address_;
}

std::optional<std::string> FocusTracker::firstAddress(Duration longest) const {
    std::unique_lock guard(mutex_);
    attempted_.wait_for(guard, longest, [this] { return hasAttempted_; });
    return address_;
}

std::vector<AtspiReference> FocusTracker::recent() const {
    const std::scoped_lock guard(mutex_);
    return recent_;
}

void FocusTracker::remember(const AtspiReference& element) {
    const std::scoped_lock guard(mutex_);
    std::erase_if(recent_, [&](const AtspiReference& known) { return known.name == element.name; });
    recent_.insert(recent_.begin(), element);
    if (recent_.size() > mostApplications) recent_.pop_back();
}

void FocusTracker::forget(const AtspiReference& element) {
    const std::scoped_lock guard(mutex_);
    std::erase(recent_, element);
}

void FocusTracker::run() {
    bool isNoted = false;
    while (!isEnding_) {
        const auto address = findBus();
        auto bus = address ? AtspiBus::open(*address, longestCall, end_.descriptor())
                           : std::unexpected(address.error());
        if (bus) {
            isNoted = false;
            follow(*bus, *address);
        } else if (bus.error() != -ECANCELED && !std::exchange(isNoted, true)) {
            DiagnosticsLog::note("context",
                                 fmt::format("Der Bus der Eingabefelder (at-spi2) ist nicht erreichbar ({}).",
                                             std::strerror(-bus.error()))); // NOLINT(concurrency-mt-unsafe)
        }
        setAddress(std::nullopt);
        if (!isEnding_) pause();
    }
}

/// The bus's address. Asks toolkits to show their trees as well.
std::expected<std::string, int> FocusTracker::findBus() const {
    auto session = AtspiBus::openSession(longestCall, end_.descriptor());
    if (!session) return std::unexpected(session.error());
    // A session that doesn't know this property may still have a bus.
    (void)session->call(launcher(), AtspiInterface::properties, "Set", longestCall, "ssv", "org.a11y.Status",
                        "IsEnabled", "b", 1);
    const auto answer = session->call(launcher(), "org.a11y.Bus", "GetAddress", longestCall);
    if (!answer) return std::unexpected(answer.error());
    const char* address = nullptr;
    if (sd_bus_message_read(answer->get(), "s", &address) <= 0 || *address == '\0')
        return std::unexpected(-ENOENT);
    return address;
}

/// Until the connection breaks, its registry goes or the end comes. Toolkits send only what somebody has
/// asked for; so the bus counts as there when that is done. A registry that is just being started may answer
/// late.
void FocusTracker::follow(AtspiBus& bus, const std::string& address) {
    isRegistryLost_ = false;
    if (sd_bus_add_match_async(bus.get(), nullptr, focusRule, &FocusTracker::focusMoved, nullptr, this) < 0)
        return;
    if (sd_bus_add_match_async(bus.get(), nullptr, registryRule, &FocusTracker::registryChanged, nullptr,
                               this) < 0)
        return;
    const auto isGone = [this] { return isRegistryLost_; };
    bool isRegistered = false;
    while (!isRegistered) {
        isRegistered = bus.call(registry(), AtspiInterface::registry, "RegisterEvent", longestCall, "s",
                                "object:state-changed:focused")
                           .has_value();
        setAddress(address);
        const auto deadline =
            isRegistered ? Instant::max() : std::chrono::steady_clock::now() + betweenAttempts;
        if (bus.serve(isGone, deadline) != -ETIMEDOUT) return;
    }
}

/// Until the next attempt is due, or somebody is in a hurry.
void FocusTracker::pause() const {
    hurry_.wait({end_.descriptor()}, std::chrono::steady_clock::now() + betweenAttempts);
}

int FocusTracker::focusMoved(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
    const char* kind = nullptr;
    int isFocused = 0;
    if (sd_bus_message_read(message, "si", &kind, &isFocused) <= 0 || isFocused == 0) return 0;
    const char* sender = sd_bus_message_get_sender(message);
    const char* path = sd_bus_message_get_path(message);
    if (sender && path) static_cast<FocusTracker*>(self)->remember({sender, path});
    return 0;
}

/// A new registry doesn't know what the old one was asked for.
int FocusTracker::registryChanged(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
    const char* name = nullptr;
    const char* before = nullptr;
    if (sd_bus_message_read(message, "ss", &name, &before) > 0 && *before != '\0')
        static_cast<FocusTracker*>(self)->isRegistryLost_ = true;
    return 0;
}

} // namespace querlin
