#include "platform/x11/ClipboardSession.h"

#include "foundation/WakeUp.h"

#include <poll.h>

namespace querlin {

namespace {

constexpr Duration longestWaitForTime = std::chrono::milliseconds(200);
constexpr Duration longestHandOver = std::chrono::milliseconds(500);

xcb_window_t makeWindow(const XcbConnection& connection) {
    const auto window = xcb_generate_id(connection.get());
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection.get(), XCB_COPY_FROM_PARENT, window, connection.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    return window;
}

} // namespace

std::expected<std::unique_ptr<ClipboardSession>, std::string>
ClipboardSession::open(const std::string& display) {
    auto connection = XcbConnection::open(display);
    if (!connection) return std::unexpected(connection.error());
    return std::unique_ptr<ClipboardSession>(new ClipboardSession(std::move(*connection)));
}

ClipboardSession::ClipboardSession(std::unique_ptr<XcbConnection> connection) :
    connection_(std::move(connection)),
    atoms_(*connection_),
    window_(makeWindow(*connection_)),
    clock_(atoms_.atom("QUERLIN_TIME")),
    owner_(*connection_, atoms_, window_),
    reader_(*connection_, atoms_) {}

ClipboardSession::~ClipboardSession() = default;

void ClipboardSession::handle(const xcb_generic_event_t& event) {
    if (eventType(event) == XCB_PROPERTY_NOTIFY) {
        const auto& change = eventAs<xcb_property_notify_event_t>(event);
        if (change.window == window_ && change.atom == clock_) reportedTime_ = change.time;
    }
    owner_.handle(event);
    reader_.handle(event);
}

bool ClipboardSession::handleEvents() {
    bool hasCome = false;
    while (const auto event = connection_->nextEvent()) {
        handle(*event);
        hasCome = true;
    }
    return hasCome;
}

bool ClipboardSession::serveUntil(const std::function<bool()>& reached, Duration longest) {
    const auto deadline = std::chrono::steady_clock::now() + longest;
    for (;;) {
        handleEvents();
        if (reached() || connection_->isLost() || std::chrono::steady_clock::now() >= deadline)
            return reached();
        pollfd socket{connection_->descriptor(), POLLIN, 0};
        pollUntil({&socket, 1}, deadline);
    }
}

/// The server reports a change of a property with its time, also an empty change.
std::optional<xcb_timestamp_t> ClipboardSession::serverTime() {
    reportedTime_.reset();
    xcb_change_property(connection_->get(), XCB_PROP_MODE_APPEND, window_, clock_, XCB_ATOM_STRING, 8, 0,
                        nullptr);
    connection_->flush();
    serveUntil([this] { return reportedTime_.has_value(); }, longestWaitForTime);
    return reportedTime_;
}

ClipboardSnapshot ClipboardSession::capture(const SelectionReader::Serve& serve) {
    if (const auto ours = owner_.contents()) {
        return ours->item.empty() ? ClipboardSnapshot() : ClipboardSnapshot{{ours->item}};
    }
    const auto time = serverTime();
    return time ? reader_.read(*time, serve) : ClipboardSnapshot();
}

bool ClipboardSession::write(SelectionContents contents) {
    // Another program may have copied something at a later time meanwhile.
    for (int attempt = 0; attempt < 2; ++attempt) {
        const auto time = serverTime();
        if (!time) return false;
        if (contents.item.empty() ? owner_.empty(*time) : owner_.own(contents, *time)) return true;
    }
    return false;
}

void ClipboardSession::handOver() {
    const auto time = serverTime();
    if (time && owner_.askManagerToKeep(*time))
        serveUntil([this] { return owner_.hasManagerAnswered(); }, longestHandOver);
}

} // namespace querlin
