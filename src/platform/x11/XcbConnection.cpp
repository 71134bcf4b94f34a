#include "platform/x11/XcbConnection.h"

#include <future>
#include <semaphore>
#include <thread>

#include <poll.h>
#include <sys/socket.h>

#include <fmt/format.h>
#include <xcb/xcbext.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

namespace querlin {

namespace {

std::string failure(int code) {
    switch (code) {
    case XCB_CONN_CLOSED_PARSE_ERR:
        return "Der Name der X-Anzeige (DISPLAY) fehlt oder ist falsch.";
    case XCB_CONN_CLOSED_INVALID_SCREEN:
        return "Die X-Anzeige hat diesen Bildschirm nicht.";
    default:
        return fmt::format("Der X-Server ist nicht erreichbar (Fehler {}).", code);
    }
}

/// xcb's library of access rights puts the name of the user's file into a place that all threads share. A
/// server that never answers its client keeps its turn; then nobody else waits long.
class Turn {
public:
    Turn() : isOurs_(free().try_acquire_for(std::chrono::milliseconds(200))) {}
    ~Turn() {
        if (isOurs_) free().release();
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

private:
    static std::binary_semaphore& free() {
        static std::binary_semaphore semaphore(1);
        return semaphore;
    }
    bool isOurs_;
};

/// What xcb would else ask the server for in the middle of other calls, and wait for without a limit.
void askBeforehand(xcb_connection_t* connection) {
    for (auto* extension : {&xcb_input_id, &xcb_test_id, &xcb_xfixes_id})
        (void)xcb_get_extension_data(connection, extension);
    (void)xcb_get_maximum_request_length(connection);
}

int remainingMilliseconds(Instant deadline) {
    const auto left = deadline - std::chrono::steady_clock::now();
    return static_cast<int>(
        std::max<std::int64_t>(0, std::chrono::ceil<std::chrono::milliseconds>(left).count()));
}

} // namespace

std::expected<std::unique_ptr<XcbConnection>, std::string> XcbConnection::open(const std::string& display,
                                                                               Duration longest) {
    struct Opened {
        Handle connection;
        int screen = 0;
    };
    // A stopped server accepts the connection and never answers. The thread is abandoned then.
    std::promise<Opened> promise;
    auto opened = promise.get_future();
    std::thread([display, promise = std::move(promise)]() mutable {
        const Turn turn;
        Opened result;
        result.connection.reset(xcb_connect(display.empty() ? nullptr : display.c_str(), &result.screen));
        if (xcb_connection_has_error(result.connection.get()) == 0) askBeforehand(result.connection.get());
        promise.set_value(std::move(result));
    }).detach();
    if (opened.wait_for(longest) != std::future_status::ready)
        return std::unexpected(std::string("Der X-Server antwortet nicht."));
    auto result = opened.get();
    if (const int code = xcb_connection_has_error(result.connection.get()); code != 0)
        return std::unexpected(failure(code));
    return std::unique_ptr<XcbConnection>(
        new XcbConnection(std::move(result.connection), result.screen, longest));
}

XcbConnection::XcbConnection(Handle connection, int screen, Duration longest) :
    connection_(std::move(connection)), longestWait_(longest) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(get()));
    for (; screen > 0 && screens.rem > 1; --screen) xcb_screen_next(&screens);
    if (screens.data) root_ = screens.data->root;
}

void* XcbConnection::awaitReply(unsigned sequence) {
    const auto deadline = std::chrono::steady_clock::now() + longestWait_;
    flush();
    while (!isLost()) {
        void* answer = nullptr;
        xcb_generic_error_t* error = nullptr;
        if (xcb_poll_for_reply(get(), sequence, &answer, &error) != 0) {
            const XcbOwned<xcb_generic_error_t> refused(error);
            return answer;
        }
        pollfd socket{descriptor(), POLLIN, 0};
        if (::poll(&socket, 1, remainingMilliseconds(deadline)) == 0) hung_ = true;
    }
    return nullptr;
}

bool XcbConnection::drain() const {
    while (nextEvent()) {
    }
    return !isLost();
}

bool XcbConnection::hasExtension(xcb_extension_t& extension) const {
    const auto* data = xcb_get_extension_data(get(), &extension);
    return data != nullptr && data->present != 0;
}

void XcbConnection::breakOff() const { ::shutdown(descriptor(), SHUT_RDWR); }

} // namespace querlin
