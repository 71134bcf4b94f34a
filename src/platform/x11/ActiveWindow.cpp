#include "platform/x11/ActiveWindow.h"

#include <array>

namespace querlin {

namespace {

/// Two zero-terminated texts: the instance's name, and the class.
std::string classOf(const std::string& bytes) {
    const auto end = bytes.find('\0');
    if (end == std::string::npos) return bytes;
    return bytes.substr(end + 1, bytes.find('\0', end + 1) - end - 1);
}

} // namespace

std::optional<ActiveWindow> ActiveWindow::look(XcbConnection& connection, XcbAtoms& atoms) {
    static const std::array<std::string, 4> names = {"_NET_ACTIVE_WINDOW", "_NET_WM_PID",
                                                     "_GTK_APPLICATION_ID", "WM_CLASS"};
    const auto numbers = atoms.atoms(names);
    const auto take = [&connection](xcb_get_property_cookie_t cookie) {
        return takeProperty(connection.reply(xcb_get_property_reply, cookie)).value_or(XcbProperty());
    };
    const auto active = take(askForProperty(connection, connection.root(), numbers[0])).numbers();
    if (active.empty() || active.front() == XCB_NONE) return std::nullopt;
    const auto processAsked = askForProperty(connection, active.front(), numbers[1]);
    const auto identifierAsked = askForProperty(connection, active.front(), numbers[2]);
    const auto classAsked = askForProperty(connection, active.front(), numbers[3]);
    const auto process = take(processAsked).numbers();
    ActiveWindow window;
    if (!process.empty()) window.processIdentifier = static_cast<std::int32_t>(process.front());
    window.applicationIdentifier = take(identifierAsked).bytes;
    window.className = classOf(take(classAsked).bytes);
    if (process.empty() && window.className.empty()) return std::nullopt;
    return window;
}

} // namespace querlin
