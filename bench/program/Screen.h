#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include <xcb/xcb.h>

namespace querlin::bench {

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

struct Place {
    std::int16_t x = 0;
    std::int16_t y = 0;
    std::uint16_t width = 0;
    std::uint16_t height = 0;
};

/// What the user would see.
class Screen {
public:
    Screen();

    /// The dots there, as the X server has them.
    std::vector<std::uint8_t> dots(const Place& place) const;
    /// Looks again and again until the dots there aren't those any more; false if they stay so for that long.
    bool change(const Place& place, const std::vector<std::uint8_t>& before,
                std::chrono::milliseconds longest) const;

    /// The window of this name, shown or not.
    std::optional<xcb_window_t> find(std::string_view name) const;
    bool isShown(xcb_window_t window) const;
    /// Where it is on the screen.
    Place place(xcb_window_t window) const;

    xcb_connection_t* connection() const { return connection_.get(); }
    const xcb_screen_t& screen() const { return *screen_; }

private:
    std::optional<xcb_window_t> findBelow(xcb_window_t parent, std::string_view name) const;

    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    const xcb_screen_t* screen_;
};

} // namespace querlin::bench
