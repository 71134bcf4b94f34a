#include "Tray.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <thread>

namespace querlin::bench {

namespace {

using Clock = std::chrono::steady_clock;
using Event = std::unique_ptr<xcb_generic_event_t, decltype(&std::free)>;

constexpr std::uint16_t size = 32;
constexpr std::uint32_t colour = 0xFF00FF; ///< of no symbol
constexpr std::uint32_t requestDock = 0;
constexpr std::uint32_t embeddedNotify = 0;
constexpr auto betweenLooks = std::chrono::microseconds(500);

template<class Reply>
using Answer = std::unique_ptr<Reply, decltype(&std::free)>;

} // namespace

Tray::Tray() :
    window_(xcb_generate_id(screen_.connection())),
    opcode_(atom("_NET_SYSTEM_TRAY_OPCODE")),
    xembed_(atom("_XEMBED")) {
    auto* const c = screen_.connection();
    const auto& screen = screen_.screen();
    const std::array<std::uint32_t, 3> values{
        colour, 1, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window_, screen.root, 0, 0, size, size, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen.root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
    const auto selection = atom("_NET_SYSTEM_TRAY_S0");
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, window_, atom("_NET_SYSTEM_TRAY_VISUAL"), XCB_ATOM_VISUALID,
                        32, 1, &screen.root_visual);
    xcb_set_selection_owner(c, window_, selection, XCB_CURRENT_TIME);
    xcb_map_window(c, window_);
    xcb_flush(c);
    const auto end = Clock::now() + std::chrono::seconds(5);
    while (!screen_.isShown(window_) && Clock::now() < end) std::this_thread::sleep_for(betweenLooks);
    std::this_thread::sleep_for(std::chrono::milliseconds(100)); // A compositor shows it a little later.
    place_ = screen_.place(window_);
    bare_ = screen_.dots(place_);
    if (bare_.empty()) throw std::runtime_error("the tray isn't shown");
}

Tray::~Tray() { xcb_destroy_window(screen_.connection(), window_); }

xcb_atom_t Tray::atom(std::string_view name) const {
    auto* const c = screen_.connection();
    const auto asked = xcb_intern_atom(c, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Answer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(c, asked, nullptr), &std::free);
    if (!reply) throw std::runtime_error("the X server has gone");
    return reply->atom;
}

void Tray::receiveEvents() {
    while (const Event event{xcb_poll_for_event(screen_.connection()), &std::free}) {
        constexpr std::uint8_t sentByClients = 0x80;
        if ((event->response_type & ~sentByClients) != XCB_CLIENT_MESSAGE) continue;
        xcb_client_message_event_t message;
        std::memcpy(&message, event.get(), sizeof(message));
        if (message.type == opcode_ && message.data.data32[1] == requestDock) embed(message.data.data32[2]);
    }
}

void Tray::embed(xcb_window_t symbol) {
    auto* const c = screen_.connection();
    const std::array<std::uint32_t, 2> extent{size, size};
    xcb_configure_window(c, symbol, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, extent.data());
    xcb_reparent_window(c, symbol, window_, 0, 0);
    xcb_client_message_event_t told{};
    told.response_type = XCB_CLIENT_MESSAGE;
    told.format = 32;
    told.window = symbol;
    told.type = xembed_;
    told.data.data32[1] = embeddedNotify;
    told.data.data32[3] = window_;
    std::array<char, 32> bytes{};
    std::memcpy(bytes.data(), &told, sizeof(told));
    xcb_send_event(c, 0, symbol, XCB_EVENT_MASK_NO_EVENT, bytes.data());
    xcb_map_window(c, symbol);
    xcb_flush(c);
}

bool Tray::awaitSymbol(std::chrono::milliseconds longest) {
    const auto end = Clock::now() + longest;
    while (Clock::now() < end) {
        receiveEvents();
        if (screen_.dots(place_) != bare_) return true;
        std::this_thread::sleep_for(betweenLooks);
    }
    return false;
}

bool Tray::isEmpty() const { return screen_.dots(place_) == bare_; }

bool Tray::awaitEmptiness(std::chrono::milliseconds longest) {
    const auto end = Clock::now() + longest;
    while (Clock::now() < end) {
        receiveEvents();
        if (isEmpty()) return true;
        std::this_thread::sleep_for(betweenLooks);
    }
    return false;
}

} // namespace querlin::bench
