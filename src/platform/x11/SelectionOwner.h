#pragma once

#include "platform/x11/IncrementalSends.h"

#include <functional>

namespace querlin {

/// Owns the clipboard on behalf of the program and serves those who ask, as the Inter-Client Communication
/// Conventions want it. The clipboard's thread.
class SelectionOwner {
public:
    SelectionOwner(XcbConnection& connection, XcbAtoms& atoms, xcb_window_t window);
    ~SelectionOwner();
    SelectionOwner(const SelectionOwner&) = delete;
    SelectionOwner& operator=(const SelectionOwner&) = delete;

    // False if the server didn't do it, for somebody has done the like at a later time. What had been offered
    // isn't any more.
    /// Takes the clipboard over; the contents are moved from if that succeeds.
    bool own(SelectionContents& contents, xcb_timestamp_t time);
    /// Empties it, whoever owns it.
    bool empty(xcb_timestamp_t time);

    void handle(const xcb_generic_event_t& event);
    /// Drops readers that have stopped; when to call this again.
    Instant dropStalled() { return sends_.dropStalled(); }

    /// What we offer; null unless we own the clipboard at this moment.
    SharedContents contents();
    /// Asks a clipboard manager to take over what we offer; it reads while events are handled. False if there
    /// is nothing to be kept or nobody who would.
    bool askManagerToKeep(xcb_timestamp_t time);
    bool hasManagerAnswered() const { return hasManagerAnswered_; }

private:
    xcb_window_t owner();
    bool isOwner() { return owner() == window_; }
    void lose();
    void answer(const xcb_selection_request_event_t& request);
    bool convert(const xcb_selection_request_event_t& request, xcb_atom_t target, xcb_atom_t property);
    bool convertMultiple(const xcb_selection_request_event_t& request, xcb_atom_t property);
    bool convertForm(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    void setAtoms(xcb_window_t window, xcb_atom_t property, const std::vector<xcb_atom_t>& list) const;
    std::vector<xcb_atom_t> targets() const;

    XcbConnection& connection_;
    XcbAtoms& atoms_;
    xcb_window_t window_;
    IncrementalSends sends_;
    std::shared_ptr<const SelectionContents> contents_;
    bool hasManagerAnswered_ = false;

    struct Names {
        explicit Names(XcbAtoms& atoms);
        xcb_atom_t clipboard, targets, timestamp, multiple, atomPair, saveTargets, null, manager, historyHint;
    } names_;
};

} // namespace querlin
