#include "platform/x11/KeyStream.h"

#include <algorithm>
#include <array>

#include <xcb/xinput.h>

namespace querlin {

namespace {

/// From here on raw events also come while another program grabs the keyboard.
constexpr std::uint16_t neededMajor = 2;
constexpr std::uint16_t neededMinor = 1;

struct Selection {
    xcb_input_event_mask_t head{XCB_INPUT_DEVICE_ALL_MASTER, 1};
    std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE;
};

} // namespace

std::expected<std::unique_ptr<XcbConnection>, std::string> KeyStream::connect(const std::string& display) {
    auto connection = XcbConnection::open(display);
    if (!connection) return connection;
    auto& x = **connection;
    if (!x.hasExtension(xcb_input_id))
        return std::unexpected(std::string("Der X-Server hat die Erweiterung XInput nicht."));
    const auto version = x.reply(xcb_input_xi_query_version_reply,
                                 xcb_input_xi_query_version(x.get(), neededMajor, neededMinor));
    const bool isEnough =
        version && (version->major_version > neededMajor ||
                    (version->major_version == neededMajor && version->minor_version >= neededMinor));
    if (!isEnough) return std::unexpected(std::string("Der X-Server hat kein XInput 2.1."));
    return connection;
}

KeyStream::KeyStream(std::unique_ptr<XcbConnection> connection, std::shared_ptr<KeyTranslation> translation,
                     Handler handler, std::function<void()> lost) :
    connection_(std::move(connection)),
    translation_(std::move(translation)),
    handler_(std::move(handler)),
    lost_(std::move(lost)) {
    const auto* data = xcb_get_extension_data(connection_->get(), &xcb_input_id);
    extension_ = data ? data->major_opcode : 0;
    const bool hasBegun = begin(); // Here, so that no key behind this call is missed.
    thread_ = std::thread([this, hasBegun] {
        if (hasBegun) run();
        isLost_ = !isEnding_;
        if (isLost_) lost_();
    });
}

KeyStream::~KeyStream() {
    isEnding_ = true;
    wakeUp_.ring();
    thread_.join();
}

bool KeyStream::begin() {
    const auto held = xcb_query_keymap(connection_->get());
    const Selection selection;
    xcb_input_xi_select_events(connection_->get(), connection_->root(), 1, &selection.head);
    const auto keymap = connection_->reply(xcb_query_keymap_reply, held);
    if (!keymap) return false;
    KeyTranslation::Keymap map{};
    std::ranges::copy(keymap->keys, map.begin());
    for (const auto& release : translation_->begin(map)) handler_(release);
    return true;
}

void KeyStream::run() {
    while (!isEnding_) {
        while (const auto event = connection_->nextEvent()) take(*event);
        if (connection_->isLost()) return;
        wakeUp_.wait({connection_->descriptor()});
    }
}

void KeyStream::take(const xcb_generic_event_t& event) {
    if (eventType(event) != XCB_GE_GENERIC) return;
    const auto& raw = eventAs<xcb_input_raw_key_press_event_t>(event);
    const bool isDown = raw.event_type == XCB_INPUT_RAW_KEY_PRESS;
    if (raw.extension != extension_ || (!isDown && raw.event_type != XCB_INPUT_RAW_KEY_RELEASE)) return;
    if (raw.detail > 0xFF) return;
    if (const auto translated = translation_->translate(static_cast<std::uint8_t>(raw.detail), isDown))
        handler_(*translated);
}

} // namespace querlin
