#pragma once

#include "platform/helper/protocol/Frames.h"

#include <atomic>
#include <expected>
#include <mutex>
#include <string>
#include <string_view>

namespace querlin {

/// What a helper does, inside of it. It may crash: nothing but the helper hangs on it. One thread.
class HelperService {
public:
    virtual ~HelperService() = default;
    /// Loads what the program asks for. The first call, once; may take a minute. The error is a German text.
    virtual std::expected<void, std::string> open(std::string_view request) = 0;
    /// Any other frame; false ends the connection.
    virtual bool handle(const HelperProtocol::Frame& frame) = 0;
};

/// The helper's end of the connection: does one frame after the other until the other side is gone or sends
/// something malformed. All it sends comes from the work itself, so a sign of life means that the work goes
/// on; only while the service opens, for a minute at most, a thread gives signs for it.
class HelperServer {
public:
    explicit HelperServer(int socket) : socket_(socket) {}

    void serve(HelperService& service);
    /// Any thread. False if the other side is gone.
    bool send(std::uint8_t kind, std::uint32_t session, std::string_view payload = {});

private:
    bool open(HelperService& service, const HelperProtocol::Frame& frame);

    int socket_;
    bool isOpen_ = false;
    std::mutex sending_; ///< signs of life and notes come while the service opens
    std::atomic<bool> isConnected_ = true;
};

} // namespace querlin
