#include "platform/x11/X11PasteKey.h"

#include "foundation/Waiting.h"
#include "state/DiagnosticsLog.h"

#include <algorithm>
#include <ranges>

#include <fmt/format.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

namespace querlin {

namespace {

constexpr Duration longestHold = std::chrono::seconds(1);
constexpr Duration betweenLooks = std::chrono::milliseconds(5);
/// A server that takes longer holds up the main thread.
constexpr Duration longestAnswer = std::chrono::milliseconds(250);

std::vector<std::uint32_t> keysymsOf(const xcb_get_keyboard_mapping_reply_t& reply) {
    const auto* first = xcb_get_keyboard_mapping_keysyms(&reply);
    return {first, first + xcb_get_keyboard_mapping_keysyms_length(&reply)};
}

std::vector<std::uint8_t> keyCodesOf(const xcb_get_modifier_mapping_reply_t& reply) {
    const auto* first = xcb_get_modifier_mapping_keycodes(&reply);
    return {first, first + xcb_get_modifier_mapping_keycodes_length(&reply)};
}

} // namespace

bool X11PasteKey::connect() {
    if (connection_ && connection_->drain()) return true;
    connection_.reset();
    auto connection = XcbConnection::open(display_, longestAnswer);
    if (!connection) {
        DiagnosticsLog::note("insert",
                             fmt::format("Es lassen sich keine Tasten drücken: {}", connection.error()));
        return false;
    }
    if (!(*connection)->hasExtension(xcb_test_id)) {
        DiagnosticsLog::note("insert", "Es lassen sich keine Tasten drücken: Der X-Server hat kein XTest.");
        return false;
    }
    auto& x = **connection;
    if (x.hasExtension(xcb_input_id)) // For the layout in use.
        (void)x.reply(xcb_input_xi_query_version_reply, xcb_input_xi_query_version(x.get(), 2, 0));
    connection_ = std::move(*connection);
    return true;
}

std::optional<KeyboardMap> X11PasteKey::map() {
    auto& x = *connection_;
    const auto* setup = xcb_get_setup(x.get());
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto keysymsAsked = xcb_get_keyboard_mapping(x.get(), setup->min_keycode, count);
    const auto modifiersAsked = xcb_get_modifier_mapping(x.get());
    const auto keysyms = x.reply(xcb_get_keyboard_mapping_reply, keysymsAsked);
    const auto modifiers = x.reply(xcb_get_modifier_mapping_reply, modifiersAsked);
    if (!keysyms || !modifiers) return std::nullopt;
    KeyboardMap map{setup->min_keycode, keysyms->keysyms_per_keycode, keysymsOf(*keysyms),
                    keyCodesOf(*modifiers)};
    if (!x.hasExtension(xcb_input_id)) return map;
    const auto device =
        x.reply(xcb_input_xi_get_client_pointer_reply, xcb_input_xi_get_client_pointer(x.get(), XCB_NONE));
    if (!device) return map;
    const auto pointer = x.reply(xcb_input_xi_query_pointer_reply,
                                 xcb_input_xi_query_pointer(x.get(), x.root(), device->deviceid));
    if (pointer) map.layout = pointer->group.effective;
    return map;
}

std::vector<std::uint8_t> X11PasteKey::heldAmong(const std::vector<std::uint8_t>& keyCodes) {
    const auto keymap = connection_->reply(xcb_query_keymap_reply, xcb_query_keymap(connection_->get()));
    std::vector<std::uint8_t> held;
    for (const auto keyCode : keyCodes) {
        if (keymap && ((std::uint32_t{keymap->keys[keyCode / 8]} >> (keyCode % 8)) & 1U) != 0)
            held.push_back(keyCode);
    }
    return held;
}

void X11PasteKey::send(std::uint8_t keyCode, bool isDown) const {
    if (isDown) ownKeys_->willPress(keyCode);
    xcb_test_fake_input(connection_->get(), isDown ? XCB_KEY_PRESS : XCB_KEY_RELEASE, keyCode,
                        XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

void X11PasteKey::send(const KeyChord& chord) const {
    for (const auto keyCode : chord.held) send(keyCode, true);
    send(chord.key, true);
    send(chord.key, false);
    for (const auto keyCode : chord.held | std::views::reverse) send(keyCode, false);
}

Task<> X11PasteKey::awaitFreeKeyboard() {
    if (!connect()) co_return;
    const auto before = map();
    if (!before) co_return;
    const auto modifiers = before->heldModifiers();
    const auto deadline = std::chrono::steady_clock::now() + longestHold;
    while (!heldAmong(modifiers).empty() && std::chrono::steady_clock::now() < deadline)
        co_await sleepFor(queue_, betweenLooks);
}

Task<bool> X11PasteKey::press(PasteShortcut shortcut) {
    if (!connect()) co_return false;
    const auto now = map(); // The layout may have been switched by the keys that were held.
    const auto held = now ? heldAmong(now->heldModifiers()) : std::vector<std::uint8_t>();
    const auto chord = now ? pasteChord(*now, shortcut) : std::nullopt;
    if (!chord) {
        DiagnosticsLog::note("insert", "Auf dieser Tastatur ist keine Taste zum Einfügen zu finden.");
        co_return false;
    }
    if (!held.empty())
        DiagnosticsLog::note("insert",
                             fmt::format("{} gehaltene Tasten wurden zum Einfügen gelöst.", held.size()));
    for (const auto keyCode : held) send(keyCode, false);
    send(*chord);
    // An answer means that the server has been through all of it.
    co_return connection_->reply(xcb_get_input_focus_reply, xcb_get_input_focus(connection_->get())) !=
        nullptr;
}

} // namespace querlin
