#pragma once

#include "platform/x11/SelectionContents.h"

#include <list>

namespace querlin {

/// Hands out in pieces what is too large for one (INCR of the Inter-Client Communication Conventions): the
/// next one when the reader has deleted the last. To any number of readers at a time; one that stops reading
/// is dropped after a while.
class IncrementalSends {
public:
    IncrementalSends(XcbConnection& connection, XcbAtoms& atoms);
    ~IncrementalSends();
    IncrementalSends(const IncrementalSends&) = delete;
    IncrementalSends& operator=(const IncrementalSends&) = delete;

    /// What is larger goes in pieces.
    std::size_t largestPieceInBytes() const { return largestPiece_; }
    void begin(xcb_window_t requestor, xcb_atom_t property, const SharedContents& contents,
               const SelectionContents::Form& form);
    /// The reader has taken a piece.
    void proceed(xcb_window_t requestor, xcb_atom_t property);
    /// The reader is gone.
    void forget(xcb_window_t requestor);
    /// Drops who doesn't read; when to call this again.
    Instant dropStalled();

private:
    struct Send {
        xcb_window_t requestor;
        xcb_atom_t property;
        SharedContents contents;
        SelectionContents::Form form;
        std::size_t offset = 0;
        Instant deadline;
    };
    using Sends = std::list<Send>;

    Sends::iterator find(xcb_window_t requestor, xcb_atom_t property);
    Sends::iterator end(Sends::iterator send);

    XcbConnection& connection_;
    xcb_atom_t incr_;
    std::size_t largestPiece_;
    Sends sends_;
};

} // namespace querlin
