#pragma once

#include "platform/x11/SelectionOwner.h"
#include "platform/x11/SelectionReader.h"

#include <expected>
#include <memory>
#include <optional>
#include <string>

namespace querlin {

/// The clipboard over one connection, for as long as that holds. The clipboard's thread.
class ClipboardSession {
public:
    static std::expected<std::unique_ptr<ClipboardSession>, std::string> open(const std::string& display);
    ~ClipboardSession();
    ClipboardSession(const ClipboardSession&) = delete;
    ClipboardSession& operator=(const ClipboardSession&) = delete;

    const XcbConnection& connection() const { return *connection_; }
    /// Handles all that has come. False if nothing has.
    bool handleEvents();
    /// Drops readers that have stopped; when to call this again.
    Instant dropStalled() { return owner_.dropStalled(); }

    ClipboardSnapshot capture(const SelectionReader::Serve& serve);
    /// False if the server didn't give us the clipboard.
    bool write(SelectionContents contents);
    /// Lets a clipboard manager have what we offer, for a while at most.
    void handOver();

private:
    explicit ClipboardSession(std::unique_ptr<XcbConnection> connection);
    /// For the same millisecond in all clients; null if the server doesn't say.
    std::optional<xcb_timestamp_t> serverTime();
    bool serveUntil(const std::function<bool()>& reached, Duration longest);
    void handle(const xcb_generic_event_t& event);

    std::unique_ptr<XcbConnection> connection_;
    XcbAtoms atoms_;
    xcb_window_t window_;
    xcb_atom_t clock_;
    std::optional<xcb_timestamp_t> reportedTime_;
    SelectionOwner owner_;
    SelectionReader reader_;
};

} // namespace querlin
