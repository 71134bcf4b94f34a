#include "platform/x11/IncrementalSends.h"

#include "state/DiagnosticsLog.h"

#include <algorithm>

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr std::size_t pieceInBytes = 256UZ * 1024;
constexpr std::size_t headOfRequestInBytes = 64;
constexpr Duration longestPause = std::chrono::seconds(5);

void listenTo(const XcbConnection& connection, xcb_window_t window, std::uint32_t events) {
    xcb_change_window_attributes(connection.get(), window, XCB_CW_EVENT_MASK, &events);
}

} // namespace

IncrementalSends::IncrementalSends(XcbConnection& connection, XcbAtoms& atoms) :
    connection_(connection),
    incr_(atoms.atom("INCR")),
    largestPiece_(std::min(pieceInBytes, (4UZ * xcb_get_maximum_request_length(connection.get())) -
                                             headOfRequestInBytes)) {}

IncrementalSends::~IncrementalSends() {
    for (const auto& send : sends_) send.contents->offer->transferEnded();
}

IncrementalSends::Sends::iterator IncrementalSends::find(xcb_window_t requestor, xcb_atom_t property) {
    return std::ranges::find_if(
        sends_, [&](const Send& send) { return send.requestor == requestor && send.property == property; });
}

void IncrementalSends::begin(xcb_window_t requestor, xcb_atom_t property, const SharedContents& contents,
                             const SelectionContents::Form& form) {
    if (const auto former = find(requestor, property); former != sends_.end()) end(former);
    listenTo(connection_, requestor, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    const auto size = static_cast<std::uint32_t>(contents->bytes(form).size());
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, requestor, property, incr_, 32, 1, &size);
    contents->offer->transferBegun();
    sends_.push_back(
        {requestor, property, contents, form, 0, std::chrono::steady_clock::now() + longestPause});
}

void IncrementalSends::proceed(xcb_window_t requestor, xcb_atom_t property) {
    const auto send = find(requestor, property);
    if (send == sends_.end()) return;
    const auto& bytes = send->contents->bytes(send->form);
    const auto size = std::min(largestPiece_, bytes.size() - send->offset);
    const auto elements = static_cast<std::uint32_t>(size / (send->form.format / 8));
    // The empty one at the end says that there are no more.
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, requestor, property, send->form.type,
                        send->form.format, elements, bytes.data() + send->offset);
    connection_.flush();
    send->offset += size;
    send->deadline = std::chrono::steady_clock::now() + longestPause;
    if (size > 0) return;
    if (send->form.isText) send->contents->offer->textTaken();
    end(send);
}

IncrementalSends::Sends::iterator IncrementalSends::end(Sends::iterator send) {
    const auto requestor = send->requestor;
    send->contents->offer->transferEnded();
    const auto next = sends_.erase(send);
    if (std::ranges::find(sends_, requestor, &Send::requestor) == sends_.end())
        listenTo(connection_, requestor, XCB_EVENT_MASK_NO_EVENT);
    return next;
}

void IncrementalSends::forget(xcb_window_t requestor) {
    for (auto send = sends_.begin(); send != sends_.end();)
        send = send->requestor == requestor ? end(send) : std::next(send);
}

Instant IncrementalSends::dropStalled() {
    const auto now = std::chrono::steady_clock::now();
    auto next = Instant::max();
    for (auto send = sends_.begin(); send != sends_.end();) {
        if (send->deadline > now) {
            next = std::min(next, send->deadline);
            ++send;
            continue;
        }
        DiagnosticsLog::note("clipboard",
                             fmt::format("Ein Programm hat nach {} von {} Byte aufgehört zu lesen.",
                                         send->offset, send->contents->bytes(send->form).size()));
        send = end(send);
    }
    return next;
}

} // namespace querlin
