#pragma once

#include "platform/x11/XcbConnection.h"

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// The server's numbers for names, remembered; many unknown ones cost one round trip.
class XcbAtoms {
public:
    explicit XcbAtoms(XcbConnection& connection) : connection_(connection) {}

    /// XCB_NONE for a name that the server doesn't take, which is an empty or an overlong one.
    xcb_atom_t atom(std::string_view name);
    std::vector<xcb_atom_t> atoms(std::span<const std::string> names);
    /// Empty for what is no atom.
    std::string name(xcb_atom_t atom);
    std::vector<std::string> names(std::span<const xcb_atom_t> atoms);

private:
    void remember(xcb_atom_t atom, const std::string& name);

    XcbConnection& connection_;
    std::map<std::string, xcb_atom_t, std::less<>> byName_;
    std::map<xcb_atom_t, std::string> byAtom_;
};

/// A property of a window, as it is.
struct XcbProperty {
    xcb_atom_t type = XCB_NONE;
    std::uint8_t format = 0; ///< bits of an element: 8, 16 or 32
    std::string bytes;

    /// Elements of 32 bits; empty in another format.
    std::vector<std::uint32_t> numbers() const;
};

/// Where the property has another type than the one asked for, or isn't there: nothing.
std::optional<XcbProperty> takeProperty(XcbOwned<xcb_get_property_reply_t> reply);

/// The request for a whole property of any type.
xcb_get_property_cookie_t askForProperty(const XcbConnection& connection, xcb_window_t window,
                                         xcb_atom_t property, bool isDeleted = false);

} // namespace querlin
