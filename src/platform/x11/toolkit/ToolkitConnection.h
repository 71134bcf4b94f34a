#pragma once

#include <cstdlib>
#include <memory>
#include <string_view>

#include <xcb/xcb.h>

/// The toolkit's own connection to the X server. Main thread.
namespace querlin::ToolkitConnection {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); } // NOLINT(*-no-malloc,*-owning-memory)
};
template<class Reply>
using ReplyPointer = std::unique_ptr<Reply, FreeReply>;

/// Null where the toolkit draws on something else.
xcb_connection_t* get();
xcb_window_t rootWindow(xcb_connection_t* connection);
/// Each is asked for once.
xcb_atom_t atom(xcb_connection_t* connection, std::string_view name);
/// Nobody's is XCB_WINDOW_NONE.
xcb_window_t selectionOwner(xcb_connection_t* connection, std::string_view selection);

} // namespace querlin::ToolkitConnection
