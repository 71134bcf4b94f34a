// A program that is pasted into and takes its time: target DELAY_MS FILE
//
// Its window has the keyboard. So long after each Ctrl+V it asks for the clipboard's text, and appends what it is
// given to the file, with a line end. With a negative delay it never asks.

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <fstream>
#include <memory>
#include <string>

#include <poll.h>
#include <unistd.h>
#include <xcb/xcb.h>

namespace {

using Clock = std::chrono::steady_clock;

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template<class Reply>
using Owned = std::unique_ptr<Reply, Free>;

class Target {
public:
    Target(int delayInMilliseconds, const char* file) : delay_(delayInMilliseconds), file_(file, std::ios::app) {
        screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        window_ = xcb_generate_id(connection_);
        const std::uint32_t values[] = {screen_->white_pixel, XCB_EVENT_MASK_KEY_PRESS};
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen_->root, 100, 100, 400, 200, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          screen_->root_visual, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
        const auto id = static_cast<std::uint32_t>(::getpid());
        set("_NET_WM_PID", XCB_ATOM_CARDINAL, 32, 1, &id);
        set("WM_CLASS", XCB_ATOM_STRING, 8, 14, "target\0Target\0");
        set("WM_NAME", XCB_ATOM_STRING, 8, 6, "Target");
        xcb_map_window(connection_, window_);
        xcb_flush(connection_);
    }

    [[noreturn]] void run() {
        for (;;) {
            pollfd waiting{xcb_get_file_descriptor(connection_), POLLIN, 0};
            ::poll(&waiting, 1, 1);
            while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) handle(*event);
            if (xcb_connection_has_error(connection_) != 0) std::exit(EXIT_SUCCESS);
            while (!due_.empty() && due_.front() <= Clock::now()) ask();
        }
    }

private:
    xcb_atom_t atom(const char* name) {
        const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            connection_, xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr));
        return reply->atom;
    }
    void set(const char* name, xcb_atom_t type, std::uint8_t format, std::uint32_t count, const void* data) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, atom(name), type, format, count, data);
    }
    void handle(const xcb_generic_event_t& event) {
        const auto type = event.response_type & 0x7F;
        if (type == XCB_KEY_PRESS) {
            const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(event);
            constexpr xcb_keycode_t v = 55; // The place of V, which all our test keyboards have there.
            if (key.detail == v && (key.state & XCB_MOD_MASK_CONTROL) != 0 && delay_.count() >= 0) due_.push_back(Clock::now() + delay_);
        } else if (type == XCB_SELECTION_NOTIFY) {
            take(reinterpret_cast<const xcb_selection_notify_event_t&>(event));
        }
    }
    void ask() {
        due_.pop_front();
        xcb_convert_selection(connection_, window_, atom("CLIPBOARD"), atom("UTF8_STRING"), atom("TARGET_TEXT"), XCB_CURRENT_TIME);
        xcb_flush(connection_);
    }
    void take(const xcb_selection_notify_event_t& event) {
        std::string text = "(nothing)";
        if (event.property != XCB_ATOM_NONE) {
            const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
                connection_, xcb_get_property(connection_, 1, window_, event.property, XCB_GET_PROPERTY_TYPE_ANY, 0, 1U << 24U), nullptr));
            text.assign(static_cast<const char*>(xcb_get_property_value(reply.get())),
                        static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
        }
        file_ << text << std::endl;
    }

    std::chrono::milliseconds delay_;
    std::ofstream file_;
    xcb_connection_t* connection_ = xcb_connect(nullptr, nullptr);
    xcb_screen_t* screen_ = nullptr;
    xcb_window_t window_ = 0;
    std::deque<Clock::time_point> due_;
};

} // namespace

int main(int count, char** arguments) {
    if (count != 3) return EXIT_FAILURE;
    Target(std::atoi(arguments[1]), arguments[2]).run();
}
