#include "platform/x11/KeyStream.h"

#include "state/DiagnosticsLog.h"

#include <algorithm>

#include <fmt/format.h>
#include <xcb/xinput.h>

namespace querlin {

namespace {

/// From this version on raw events also come while another program grabs the keyboard.
constexpr std::uint16_t neededMajor = 2;
constexpr std::uint16_t neededMinor = 1;
/// Whoever ends the stream waits this long at most, should the server not answer.
constexpr Duration longestAnswer = std::chrono::milliseconds(250);
constexpr Duration betweenAttempts = std::chrono::seconds(5);

struct Selection {
    xcb_input_event_mask_t head{XCB_INPUT_DEVICE_ALL_MASTER, 1};
    std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE;
};

} // namespace

KeyStream::KeyStream(std::string display, Listener listener) :
    display_(std::move(display)), listener_(std::move(listener)), thread_([this] { run(); }) {}

KeyStream::~KeyStream() {
    isEnding_ = true;
    wakeUp_.ring();
    thread_.join();
}

bool KeyStream::isOfferedBy(XcbConnection& connection) {
    if (!connection.hasExtension(xcb_input_id)) return false;
    const auto version =
        connection.reply(xcb_input_xi_query_version_reply,
                         xcb_input_xi_query_version(connection.get(), neededMajor, neededMinor));
    return version && (version->major_version > neededMajor ||
                       (version->major_version == neededMajor && version->minor_version >= neededMinor));
}

std::expected<std::unique_ptr<XcbConnection>, std::string> KeyStream::connect() const {
    auto connection = XcbConnection::open(display_, longestAnswer);
    if (connection && !isOfferedBy(**connection))
        return std::unexpected(std::string("Der X-Server hat kein XInput 2.1."));
    return connection;
}

void KeyStream::run() {
    bool isNoted = false;
    while (!isEnding_) {
        if (auto connection = connect()) {
            isNoted = false;
            follow(**connection);
        } else if (!std::exchange(isNoted, true)) {
            DiagnosticsLog::note("hotkey",
                                 fmt::format("Die Tastatur ist nicht zu hören: {}", connection.error()));
        }
        const auto next = std::chrono::steady_clock::now() + betweenAttempts;
        while (!isEnding_ && std::chrono::steady_clock::now() < next) wakeUp_.wait({}, next);
    }
}

/// A key that goes down after the server was asked which ones are is reported.
bool KeyStream::begin(XcbConnection& connection) {
    const auto asked = xcb_query_keymap(connection.get());
    const Selection selection;
    xcb_input_xi_select_events(connection.get(), connection.root(), 1, &selection.head);
    const auto keymap = connection.reply(xcb_query_keymap_reply, asked);
    if (!keymap) return false;
    std::array<std::uint8_t, 32> held{};
    std::ranges::copy(keymap->keys, held.begin());
    listener_.begun(held);
    return true;
}

void KeyStream::follow(XcbConnection& connection) {
    if (!begin(connection)) return;
    const auto* data = xcb_get_extension_data(connection.get(), &xcb_input_id);
    while (!isEnding_) {
        while (const auto event = connection.nextEvent()) take(*event, data->major_opcode);
        if (connection.isLost()) break;
        wakeUp_.wait({connection.descriptor()});
    }
    if (!isEnding_) listener_.lost();
}

void KeyStream::take(const xcb_generic_event_t& event, std::uint8_t extension) const {
    if (eventType(event) != XCB_GE_GENERIC) return;
    const auto& raw = eventAs<xcb_input_raw_key_press_event_t>(event);
    const bool isDown = raw.event_type == XCB_INPUT_RAW_KEY_PRESS;
    if (raw.extension != extension || (!isDown && raw.event_type != XCB_INPUT_RAW_KEY_RELEASE)) return;
    if (raw.detail <= 0xFF) listener_.key(static_cast<std::uint8_t>(raw.detail), isDown);
}

} // namespace querlin
