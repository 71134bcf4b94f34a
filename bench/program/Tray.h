#pragma once

#include "Screen.h"

#include <chrono>

namespace querlin::bench {

/// A tray of the older protocol (XEmbed) for one symbol, in one colour, so that the first dot of a symbol is
/// seen.
class Tray {
public:
    Tray();
    ~Tray();
    Tray(const Tray&) = delete;
    Tray& operator=(const Tray&) = delete;

    /// Takes the next program's symbol in and looks on until it is painted; false if that doesn't come about.
    bool awaitSymbol(std::chrono::milliseconds longest);
    /// Waits until that program has gone with its symbol.
    bool awaitEmptiness(std::chrono::milliseconds longest);

private:
    xcb_atom_t atom(std::string_view name) const;
    void receiveEvents();
    void embed(xcb_window_t symbol);
    bool isEmpty() const;

    Screen screen_;
    xcb_window_t window_;
    xcb_atom_t opcode_;
    xcb_atom_t xembed_;
    Place place_;
    std::vector<std::uint8_t> bare_;
};

} // namespace querlin::bench
