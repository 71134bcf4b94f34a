#include "platform/x11/X11FocusReturn.h"

#include "foundation/Waiting.h"

#include <algorithm>
#include <array>

#include <unistd.h>

namespace querlin {

namespace {

constexpr auto longestWait = std::chrono::seconds(1);
constexpr auto betweenLooks = std::chrono::milliseconds(10);

} // namespace

X11FocusReturn::X11FocusReturn(MainQueue& queue, const std::string& display) : queue_(queue) {
    auto connection = XcbConnection::open(display);
    if (!connection) return; // Others say so.
    connection_ = std::move(*connection);
    atoms_ = std::make_unique<XcbAtoms>(*connection_);
    thread_ = std::thread([this] { serve(); });
}

X11FocusReturn::~X11FocusReturn() {
    isEnding_ = true;
    wakeUp_.ring();
    if (thread_.joinable()) thread_.join();
}

Task<bool> X11FocusReturn::giveBack() {
    isWished_ = true;
    wakeUp_.ring();
    const auto deadline = std::chrono::steady_clock::now() + longestWait;
    while (std::chrono::steady_clock::now() < deadline) {
        const auto wanted = other_.load();
        if (wanted == XCB_WINDOW_NONE) co_return false;
        if (!isWished_ && active_ == wanted) co_return true;
        co_await sleepFor(queue_, betweenLooks);
    }
    co_return false;
}

// The thread

void X11FocusReturn::serve() {
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_->get(), connection_->root(), XCB_CW_EVENT_MASK, &mask);
    look();
    while (!isEnding_ && !connection_->isLost()) {
        // What is asked for in here may bring further events along: no wait before all are seen.
        if (hasChanged()) {
            look();
        } else if (isWished_) {
            activate();
        } else {
            connection_->flush();
            wakeUp_.wait(connection_->descriptor());
        }
    }
    other_ = XCB_WINDOW_NONE;
}

/// Whether another window is in front since the last look.
bool X11FocusReturn::hasChanged() {
    bool changed = false;
    while (const auto event = connection_->nextEvent()) {
        if (eventType(*event) != XCB_PROPERTY_NOTIFY) continue;
        const auto& change = eventAs<xcb_property_notify_event_t>(*event);
        changed = changed || change.atom == atoms_->atom("_NET_ACTIVE_WINDOW");
    }
    return changed;
}

void X11FocusReturn::look() {
    const auto active = numbers(connection_->root(), "_NET_ACTIVE_WINDOW");
    const auto window = active.empty() ? xcb_window_t(XCB_WINDOW_NONE) : active.front();
    if (window != XCB_WINDOW_NONE && isOfOthers(window)) other_ = window;
    active_ = window;
}

/// A wish of the user's: source indication 2 of _NET_ACTIVE_WINDOW (Extended Window Manager Hints).
void X11FocusReturn::activate() {
    const auto window = other_.load();
    if (window != XCB_WINDOW_NONE && numbers(window, "WM_STATE").empty()) other_ = XCB_WINDOW_NONE; // It has gone.
    if (other_ != XCB_WINDOW_NONE) {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = atoms_->atom("_NET_ACTIVE_WINDOW");
        message.data.data32[0] = 2;
        xcb_send_event(connection_->get(), 0, connection_->root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&message)); // NOLINT(*-reinterpret-cast): the protocol's bytes.
    }
    isWished_ = false;
}

bool X11FocusReturn::isOfOthers(xcb_window_t window) {
    const auto process = numbers(window, "_NET_WM_PID");
    if (!process.empty() && process.front() == static_cast<std::uint32_t>(::getpid())) return false;
    const auto types = numbers(window, "_NET_WM_WINDOW_TYPE");
    const std::array shells = {atoms_->atom("_NET_WM_WINDOW_TYPE_DESKTOP"), atoms_->atom("_NET_WM_WINDOW_TYPE_DOCK")};
    return std::ranges::find_first_of(types, shells) == types.end();
}

std::vector<std::uint32_t> X11FocusReturn::numbers(xcb_window_t window, std::string_view property) {
    const auto cookie = askForProperty(*connection_, window, atoms_->atom(property));
    return takeProperty(connection_->reply(xcb_get_property_reply, cookie)).value_or(XcbProperty()).numbers();
}

} // namespace querlin
