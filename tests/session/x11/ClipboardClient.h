#pragma once

#include "desktop/Clipboard.h"
#include "foundation/Time.h"
#include "platform/x11/XcbAtoms.h"

#include <atomic>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <thread>

namespace querlin {

struct CopyingHabits {
    std::set<std::string> unanswered = {}; ///< targets that it never answers
    std::set<std::string> refused = {};
    std::optional<int> diesAfter = {}; ///< so many answers, TARGETS included
    std::size_t largestPiece = 200'000;
    std::optional<std::size_t> stopsAfterPieces = {}; ///< of a transfer in pieces
    Duration perImage = {};                           ///< how long it takes to encode one
    std::string manages = {};                         ///< a selection that it takes in place of the clipboard
};

/// Another program that has copied something, on a thread and a connection of its own.
class CopyingProgram {
public:
    explicit CopyingProgram(ClipboardSnapshot::Item forms, CopyingHabits habits = {});
    ~CopyingProgram();
    CopyingProgram(const CopyingProgram&) = delete;
    CopyingProgram& operator=(const CopyingProgram&) = delete;

    int answers() const { return answers_; }
    /// What a clipboard manager was asked to keep.
    std::atomic<int> savesAsked = 0;

private:
    struct Sending {
        xcb_window_t requestor;
        xcb_atom_t property;
        xcb_atom_t type;
        std::uint8_t format;
        std::string bytes;
        std::size_t offset = 0;
        std::size_t pieces = 0;
    };

    void run();
    void answer(const xcb_selection_request_event_t& request);
    bool convert(const xcb_selection_request_event_t& request, const std::string& target);
    void goOn(const xcb_property_notify_event_t& change);

    ClipboardSnapshot::Item forms_;
    CopyingHabits habits_;
    std::unique_ptr<XcbConnection> connection_;
    XcbAtoms atoms_;
    xcb_window_t window_;
    std::vector<Sending> sendings_;
    std::atomic<int> answers_ = 0;
    std::atomic<bool> isEnding_ = false;
    std::thread thread_;
};

/// Another program that pastes.
class PastingProgram {
public:
    PastingProgram();

    /// Nothing if it is refused or not answered. `pieces` bounds how many are taken of a transfer in pieces.
    std::optional<XcbProperty> read(const std::string& target, std::size_t pieces = SIZE_MAX, xcb_timestamp_t time = XCB_CURRENT_TIME);
    std::vector<std::string> targets();
    /// By one question for several; empty for what isn't there.
    std::vector<std::string> readMultiple(const std::vector<std::string>& targets);
    std::string typeName(const XcbProperty& property) { return atoms_.name(property.type); }
    void destroyWindow();

private:
    xcb_window_t makeWindow();
    bool ask(xcb_atom_t target, xcb_atom_t property, xcb_timestamp_t time);
    bool wait(const std::function<bool(const xcb_generic_event_t&)>& isIt);
    std::optional<XcbProperty> take(xcb_atom_t property);

    std::unique_ptr<XcbConnection> connection_;
    XcbAtoms atoms_;
    xcb_window_t window_;
};

} // namespace querlin
