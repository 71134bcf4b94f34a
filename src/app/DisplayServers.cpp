#include "app/DisplayServers.h"

#include "platform/x11/X11DisplayServer.h"
#include "platform/x11/toolkit/X11Surfaces.h"
#include "platform/x11/toolkit/X11SystemTray.h"

#include <algorithm>
#include <array>

namespace querlin::DisplayServers {

namespace {

struct Kind {
    bool (*isReachable)();
    Maker make;
};

bool isX11Reachable() { return XcbConnection::open({}).has_value(); }

std::unique_ptr<DisplayServer> makeX11(MainQueue& queue) {
    return std::make_unique<X11DisplayServer>(queue, std::make_unique<X11Surfaces>(),
                                              std::make_unique<X11SystemTray>(queue));
}

/// In the order in which they are tried.
constexpr std::array<Kind, 1> kinds = {{{isX11Reachable, makeX11}}};

} // namespace

Maker find() {
    const auto* const kind = std::ranges::find_if(kinds, [](const Kind& each) { return each.isReachable(); });
    return kind == kinds.end() ? nullptr : kind->make;
}

Maker fallback() { return makeX11; }

} // namespace querlin::DisplayServers
