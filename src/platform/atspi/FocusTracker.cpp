#include "platform/atspi/FocusTracker.h"

#include "state/DiagnosticsLog.h"

#include <algorithm>
#include <array>
#include <cstring>

#include <fmt/format.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace querlin {

namespace {

constexpr Duration longestCall = std::chrono::seconds(1);
constexpr int betweenAttemptsInMilliseconds = 1000;
constexpr std::size_t mostApplications = 32;

constexpr auto rule = "type='signal',interface='org.a11y.atspi.Event.Object',member='StateChanged',"
                      "arg0='focused'";
const AtspiReference launcher{"org.a11y.Bus", "/org/a11y/bus"};
const AtspiReference registry{"org.a11y.atspi.Registry", "/org/a11y/atspi/registry"};

std::string readText(sd_bus_message* message) {
    const char* text = nullptr;
    return sd_bus_message_read(message, "s", &text) > 0 ? text : "";
}

/// The bus's address. On the way toolkits are told to show their trees.
std::expected<std::string, int> findBus() {
    auto session = AtspiBus::openSession(longestCall);
    if (!session) return std::unexpected(session.error());
    // One that can't be told so may still have a bus.
    (void)session->call(launcher, AtspiInterface::properties, "Set", longestCall, "ssv", "org.a11y.Status",
                        "IsEnabled", "b", 1);
    const auto answer = session->call(launcher, "org.a11y.Bus", "GetAddress", longestCall);
    if (!answer) return std::unexpected(answer.error());
    auto address = readText(answer->get());
    if (address.empty()) return std::unexpected(-ENOENT);
    return address;
}

void waitAtMost(int wakeUp, int descriptor, short events, int longestInMilliseconds) {
    std::array<pollfd, 2> waiting = {{{wakeUp, POLLIN, 0}, {descriptor, events, 0}}};
    ::poll(waiting.data(), waiting.size(), longestInMilliseconds);
    eventfd_t rung = 0;
    if (waiting.front().revents != 0) (void)::eventfd_read(wakeUp, &rung);
}

} // namespace

FocusTracker::FocusTracker() : wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    thread_ = std::thread([this] { run(); });
}

FocusTracker::~FocusTracker() {
    {
        const std::scoped_lock guard(mutex_);
        isEnding_ = true;
    }
    hurry();
    thread_.join();
    ::close(wakeUp_);
}

void FocusTracker::hurry() { (void)::eventfd_write(wakeUp_, 1); }

bool FocusTracker::isEnding() const {
    const std::scoped_lock guard(mutex_);
    return isEnding_;
}

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
    while (!isEnding()) {
        const auto address = findBus();
        auto bus = address ? AtspiBus::open(*address, longestCall) : std::unexpected(address.error());
        if (bus) {
            isNoted = false;
            setAddress(*address);
            follow(*bus);
        } else if (!std::exchange(isNoted, true)) {
            DiagnosticsLog::note("context",
                                 fmt::format("Der Bedienungshilfen-Bus ist nicht erreichbar ({}).",
                                             std::strerror(-bus.error()))); // NOLINT(concurrency-mt-unsafe)
        }
        setAddress(std::nullopt);
        if (!isEnding()) waitAtMost(wakeUp_, -1, 0, betweenAttemptsInMilliseconds);
    }
}

/// Until the connection breaks or the end comes.
void FocusTracker::follow(AtspiBus& bus) {
    if (sd_bus_add_match(bus.get(), nullptr, rule, &FocusTracker::heard, this) < 0) return;
    // Toolkits send only what somebody has asked for.
    (void)bus.call(registry, AtspiInterface::registry, "RegisterEvent", longestCall, "s",
                   "object:state-changed:focused");
    while (!isEnding()) {
        const int processed = sd_bus_process(bus.get(), nullptr);
        if (processed < 0 || bus.isLost()) return;
        if (processed > 0) continue;
        const int events = sd_bus_get_events(bus.get());
        if (events < 0) return;
        waitAtMost(wakeUp_, sd_bus_get_fd(bus.get()), static_cast<short>(events), -1);
    }
}

int FocusTracker::heard(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
    const char* kind = nullptr;
    int isFocused = 0;
    if (sd_bus_message_read(message, "si", &kind, &isFocused) <= 0 || isFocused == 0) return 0;
    const char* sender = sd_bus_message_get_sender(message);
    const char* path = sd_bus_message_get_path(message);
    if (!sender || !path) return 0;
    static_cast<FocusTracker*>(self)->remember({sender, path});
    return 0;
}

} // namespace querlin
