#include "Screen.h"

#include <cstdlib>
#include <span>
#include <stdexcept>
#include <string>
#include <thread>

namespace querlin::bench {

namespace {

struct Free {
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory): xcb's way
    void operator()(void* reply) const { std::free(reply); }
};
template<class Reply>
using Answer = std::unique_ptr<Reply, Free>;

constexpr auto betweenLooks = std::chrono::microseconds(500);
constexpr std::uint32_t longestName = 64;

} // namespace

Screen::Screen() : connection_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(connection_.get()) != 0) throw std::runtime_error("no X server");
    screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data;
}

std::vector<std::uint8_t> Screen::dots(const Place& place) const {
    auto* const c = connection_.get();
    const auto asked = xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, screen_->root, place.x, place.y,
                                     place.width, place.height, ~0U);
    const Answer<xcb_get_image_reply_t> image(xcb_get_image_reply(c, asked, nullptr));
    if (!image) return {};
    const auto* const data = xcb_get_image_data(image.get());
    return {data, data + xcb_get_image_data_length(image.get())};
}

bool Screen::change(const Place& place, const std::vector<std::uint8_t>& before,
                    std::chrono::milliseconds longest) const {
    const auto end = std::chrono::steady_clock::now() + longest;
    while (std::chrono::steady_clock::now() < end) {
        if (dots(place) != before) return true;
        std::this_thread::sleep_for(betweenLooks);
    }
    return false;
}

std::optional<xcb_window_t> Screen::find(std::string_view name) const {
    return findBelow(screen_->root, name);
}

std::optional<xcb_window_t> Screen::findBelow(xcb_window_t parent, std::string_view name) const {
    auto* const c = connection_.get();
    const Answer<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(c, xcb_query_tree(c, parent), nullptr));
    if (!tree) return std::nullopt;
    const std::span children(xcb_query_tree_children(tree.get()),
                             static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
    for (const auto child : children) {
        const auto asked =
            xcb_get_property(c, 0, child, XCB_ATOM_WM_NAME, XCB_GET_PROPERTY_TYPE_ANY, 0, longestName);
        const Answer<xcb_get_property_reply_t> reply(xcb_get_property_reply(c, asked, nullptr));
        if (reply) {
            const std::string value(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                    static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
            if (value == name) return child;
        }
        if (const auto found = findBelow(child, name)) return found;
    }
    return std::nullopt;
}

bool Screen::isShown(xcb_window_t window) const {
    auto* const c = connection_.get();
    const Answer<xcb_get_window_attributes_reply_t> reply(
        xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, window), nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

Place Screen::place(xcb_window_t window) const {
    auto* const c = connection_.get();
    const auto shape = xcb_get_geometry(c, window);
    const auto corner = xcb_translate_coordinates(c, window, screen_->root, 0, 0);
    const Answer<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(c, shape, nullptr));
    const Answer<xcb_translate_coordinates_reply_t> origin(
        xcb_translate_coordinates_reply(c, corner, nullptr));
    if (!size || !origin) return {};
    return {origin->dst_x, origin->dst_y, size->width, size->height};
}

} // namespace querlin::bench
