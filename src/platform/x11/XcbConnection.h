#pragma once

#include "foundation/Time.h"

#include <cstdint>
#include <cstdlib>
#include <expected>
#include <memory>
#include <string>

#include <xcb/xcb.h>

namespace querlin {

struct FreeXcb {
    // NOLINTNEXTLINE(*-no-malloc,*-owning-memory): xcb's memory is from malloc
    void operator()(void* memory) const { std::free(memory); }
};
/// What xcb has handed to us; null where there is no answer.
template<class Reply>
using XcbOwned = std::unique_ptr<Reply, FreeXcb>;
using XcbEvent = XcbOwned<xcb_generic_event_t>;

/// A connection to an X server, used by one thread. No call waits longer for the server than the limit given.
/// One that has once not answered in time counts as lost, for its answers would come at the wrong place.
class XcbConnection {
public:
    /// `display` names the server (":1"); empty means that of the environment. The error is a German text.
    static std::expected<std::unique_ptr<XcbConnection>, std::string>
    open(const std::string& display, Duration longest = std::chrono::seconds(2));

    xcb_connection_t* get() const { return connection_.get(); }
    xcb_window_t root() const { return root_; }
    int descriptor() const { return xcb_get_file_descriptor(get()); }
    bool isLost() const { return hung_ || xcb_connection_has_error(get()) != 0; }
    void flush() const { xcb_flush(get()); }

    /// Of all later replies.
    void setLongestWait(Duration longest) { longestWait_ = longest; }
    /// The answer to a request, whose reply function tells the type: `reply(xcb_get_property_reply, cookie)`.
    /// Null if the server refuses, is gone, or takes too long.
    template<class Reply, class Cookie>
    XcbOwned<Reply> reply(Reply* (*)(xcb_connection_t*, Cookie, xcb_generic_error_t**), Cookie cookie) {
        return XcbOwned<Reply>(static_cast<Reply*>(awaitReply(cookie.sequence)));
    }
    /// The next event; an error that nobody waits for is one too (type 0). Null if there is none at the
    /// moment.
    XcbEvent nextEvent() const { return XcbEvent(xcb_poll_for_event(get())); }
    /// Throws away what has come. False if the connection is lost.
    bool drain() const;
    bool hasExtension(xcb_extension_t& extension) const;

    /// Ends a wait of the connection's thread from another one; the connection is lost then.
    void breakOff() const;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    using Handle = std::unique_ptr<xcb_connection_t, Disconnect>;

    XcbConnection(Handle connection, int screen, Duration longest);
    void* awaitReply(unsigned sequence);

    Handle connection_;
    xcb_window_t root_ = XCB_NONE;
    Duration longestWait_;
    bool hung_ = false;
};

/// The kind of an event, whoever has sent it.
inline std::uint8_t eventType(const xcb_generic_event_t& event) {
    return static_cast<std::uint8_t>(event.response_type & 0x7FU);
}

/// The event as what its type says it is.
template<class Event>
const Event& eventAs(const xcb_generic_event_t& event) {
    return reinterpret_cast<const Event&>(event); // NOLINT(*-reinterpret-cast): how xcb hands events out
}

} // namespace querlin
