#include "platform/x11/FocusHistory.h"

#include <utility>

namespace querlin {

namespace {

void listen(const XcbConnection& connection, xcb_window_t window, std::uint32_t mask) {
    xcb_change_window_attributes(connection.get(), window, XCB_CW_EVENT_MASK, &mask);
}

xcb_window_t makeUnseenWindow(const XcbConnection& connection) {
    const auto window = xcb_generate_id(connection.get());
    constexpr std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection.get(), 0, window, connection.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
    return window;
}

} // namespace

FocusHistory::FocusHistory(std::unique_ptr<XcbConnection> connection) :
    connection_(std::move(connection)),
    atoms_(*connection_),
    focus_(*connection_, atoms_),
    clock_(makeUnseenWindow(*connection_)) {
    listen(*connection_, connection_->root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
    focus_.lookForManager();
    look();
}

FocusHistory::~FocusHistory() { answerAll(false); }

void FocusHistory::add(std::vector<FocusWish> wishes) {
    if (wishes.empty()) return;
    for (auto& wish : wishes) wishes_.push_back(std::move(wish));
    focus_.lookForManager();
    look();
    if (last_ != XCB_WINDOW_NONE && !focus_.isThere(last_)) remember(XCB_WINDOW_NONE);
    if (last_ == XCB_WINDOW_NONE) answerAll(false);
    if (!wishes_.empty()) askForTime();
}

void FocusHistory::serve() {
    // What is asked for in here may bring further events along: it ends only when none are left.
    while (takeEvents()) look();
    if (mustLookByItself()) look();
    const auto now = std::chrono::steady_clock::now();
    std::erase_if(wishes_,
                  [now](const FocusWish& wish) { return wish.deadline < now; }); // Nobody waits any more.
    connection_->flush();
}

/// Whether there were any.
bool FocusHistory::takeEvents() {
    bool wereThere = false;
    while (const auto event = connection_->nextEvent()) {
        wereThere = true;
        if (eventType(*event) == XCB_DESTROY_NOTIFY &&
            eventAs<xcb_destroy_notify_event_t>(*event).window == last_) {
            last_ = XCB_WINDOW_NONE;
            answerAll(false);
        }
        if (eventType(*event) != XCB_PROPERTY_NOTIFY) continue;
        const auto& change = eventAs<xcb_property_notify_event_t>(*event);
        if (change.window == clock_) {
            activate(change.time);
        } else if (focus_.tellsOfManager(change.atom)) {
            focus_.lookForManager();
        }
    }
    return wereThere;
}

void FocusHistory::look() {
    const auto active = focus_.active();
    if (active == XCB_WINDOW_NONE) return;
    // A window that has just gone may still be reported, but has no properties any more.
    if (active != last_ && focus_.isThere(active) && focus_.isOfAnotherProgram(active)) remember(active);
    if (active == last_) answerAll(true);
}

/// Of its end we want to hear: the server gives its number to another one some day.
void FocusHistory::remember(xcb_window_t window) {
    if (last_ != XCB_WINDOW_NONE) listen(*connection_, last_, XCB_EVENT_MASK_NO_EVENT);
    last_ = window;
    if (last_ != XCB_WINDOW_NONE) listen(*connection_, last_, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
}

/// A change without contents: the server tells when it was.
void FocusHistory::askForTime() {
    xcb_change_property(connection_->get(), XCB_PROP_MODE_APPEND, clock_, XCB_ATOM_WM_NAME, XCB_ATOM_STRING,
                        8, 0, nullptr);
}

void FocusHistory::activate(xcb_timestamp_t time) {
    if (!wishes_.empty() && last_ != XCB_WINDOW_NONE) focus_.activate(last_, time);
}

void FocusHistory::answerAll(bool isGivenBack) {
    for (const auto& wish : std::exchange(wishes_, {})) wish.answer.send(isGivenBack);
}

} // namespace querlin
