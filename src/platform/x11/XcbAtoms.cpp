#include "platform/x11/XcbAtoms.h"

#include <array>
#include <cstring>
#include <limits>

namespace querlin {

void XcbAtoms::remember(xcb_atom_t atom, const std::string& name) {
    if (atom == XCB_NONE) return;
    byName_.emplace(name, atom);
    byAtom_.emplace(atom, name);
}

xcb_atom_t XcbAtoms::atom(std::string_view name) {
    if (const auto known = byName_.find(name); known != byName_.end()) return known->second;
    const std::array<std::string, 1> one = {std::string(name)};
    return atoms(one).front();
}

std::vector<xcb_atom_t> XcbAtoms::atoms(std::span<const std::string> names) {
    std::map<std::string, xcb_intern_atom_cookie_t> asked;
    for (const auto& name : names) {
        const bool isPossible = !name.empty() && name.size() <= std::numeric_limits<std::uint16_t>::max();
        if (!isPossible || byName_.contains(name) || asked.contains(name)) continue;
        asked.emplace(name, xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(name.size()),
                                            name.data()));
    }
    for (const auto& [name, cookie] : asked) {
        if (const auto reply = connection_.reply(xcb_intern_atom_reply, cookie)) remember(reply->atom, name);
    }
    std::vector<xcb_atom_t> found;
    for (const auto& name : names) {
        const auto known = byName_.find(name);
        found.push_back(known == byName_.end() ? xcb_atom_t{XCB_NONE} : known->second);
    }
    return found;
}

std::string XcbAtoms::name(xcb_atom_t atom) {
    const std::array<xcb_atom_t, 1> one = {atom};
    return names(one).front();
}

std::vector<std::string> XcbAtoms::names(std::span<const xcb_atom_t> atoms) {
    std::map<xcb_atom_t, xcb_get_atom_name_cookie_t> asked;
    for (const auto atom : atoms) {
        if (atom != XCB_NONE && !byAtom_.contains(atom) && !asked.contains(atom))
            asked.emplace(atom, xcb_get_atom_name(connection_.get(), atom));
    }
    for (const auto& [atom, cookie] : asked) {
        const auto reply = connection_.reply(xcb_get_atom_name_reply, cookie);
        if (!reply) continue;
        const auto length = static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()));
        remember(atom, std::string(xcb_get_atom_name_name(reply.get()), length));
    }
    std::vector<std::string> found;
    for (const auto atom : atoms) {
        const auto known = byAtom_.find(atom);
        found.push_back(known == byAtom_.end() ? std::string() : known->second);
    }
    return found;
}

std::vector<std::uint32_t> XcbProperty::numbers() const {
    std::vector<std::uint32_t> numbers(format == 32 ? bytes.size() / sizeof(std::uint32_t) : 0);
    if (!numbers.empty()) std::memcpy(numbers.data(), bytes.data(), numbers.size() * sizeof(std::uint32_t));
    return numbers;
}

std::optional<XcbProperty> takeProperty(XcbOwned<xcb_get_property_reply_t> reply) {
    if (!reply || reply->type == XCB_NONE) return std::nullopt;
    const auto length = static_cast<std::size_t>(xcb_get_property_value_length(reply.get()));
    std::string bytes(static_cast<const char*>(xcb_get_property_value(reply.get())), length);
    return XcbProperty{reply->type, reply->format, std::move(bytes)};
}

xcb_get_property_cookie_t askForProperty(const XcbConnection& connection, xcb_window_t window,
                                         xcb_atom_t property, bool isDeleted) {
    constexpr std::uint32_t allOfIt = 0x1FFFFFFF; // in units of four bytes
    return xcb_get_property(connection.get(), isDeleted ? 1 : 0, window, property, XCB_GET_PROPERTY_TYPE_ANY,
                            0, allOfIt);
}

} // namespace querlin
