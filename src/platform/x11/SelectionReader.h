#pragma once

#include "desktop/Clipboard.h"
#include "platform/x11/XcbAtoms.h"

#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace querlin {

/// Reads all that another program offers on the clipboard. Its wishes are met one after the other, for
/// programs expect that; whoever doesn't answer is waited for up to limits that keep a dictation moving. The
/// clipboard's thread.
class SelectionReader {
public:
    /// Handles what comes, once, waiting until the deadline at most. False if nothing more will come.
    using Serve = std::function<bool(Instant deadline)>;

    SelectionReader(XcbConnection& connection, XcbAtoms& atoms);

    /// What is there, in the owner's order; what had to be left out is noted. `time` is the server's present
    /// time.
    ClipboardSnapshot read(xcb_timestamp_t time, const Serve& serve);
    /// Must be given every event while `read` runs.
    void handle(const xcb_generic_event_t& event);

private:
    enum class Gap : std::uint8_t {
        refused, ///< by the owner
        late,
        tooLarge,
        abandoned ///< the owner is gone or another one
    };
    using Answer = std::expected<XcbProperty, Gap>;
    /// One look at one owner.
    struct Reading {
        xcb_timestamp_t time = XCB_CURRENT_TIME;
        const Serve* serve = nullptr;
        Instant begun;
        std::vector<xcb_atom_t> targets;
        std::vector<std::string> names;
        std::vector<std::optional<ClipboardData>> found;
        std::size_t sizeInBytes = 0;
        std::size_t leftOut = 0;
    };

    xcb_window_t owner();
    bool readOwner(Reading& reading);
    bool askForTargets(Reading& reading);
    void fetch(Reading& reading, const std::vector<std::size_t>& wanted, Instant deadline);
    Answer convert(Reading& reading, xcb_atom_t target, Instant deadline, Duration longestSilence);
    Answer receivePieces(Reading& reading, xcb_atom_t property, Instant deadline, Duration longestSilence);
    bool await(const Reading& reading, const bool& reached, Instant deadline) const;

    XcbConnection& connection_;
    XcbAtoms& atoms_;
    xcb_atom_t clipboard_;
    xcb_atom_t targets_;
    xcb_atom_t incr_;
    std::uint8_t ownerEvent_ = 0; ///< its number on this server; 0 if there is no such event

    // Of the conversion under way
    xcb_window_t window_ = XCB_NONE;
    xcb_window_t presentOwner_ = XCB_NONE;
    bool hasOwnerChanged_ = false;
    xcb_timestamp_t changeTime_ = XCB_CURRENT_TIME;
    xcb_atom_t awaited_ = XCB_NONE;
    bool isAnswered_ = false;
    bool isRefused_ = false;
    bool hasNewValue_ = false;
};

} // namespace querlin
