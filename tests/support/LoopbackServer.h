#pragma once

#include "foundation/Time.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace querlin {

/// A small HTTP/1.1 server on 127.0.0.1 whose answers are scripted, faults included. It knows requests
/// without a body, keeps connections open between them, and serves at most 32 connections at a time.
/// Any thread; the handler is called on the connections' threads.
class LoopbackServer {
public:
    using Headers = std::vector<std::pair<std::string, std::string>>;

    struct Request {
        std::string method;
        std::string path; ///< as it stands in the request line
        Headers headers;

        /// Case doesn't count in the name.
        std::optional<std::string> header(std::string_view name) const;
    };

    /// What is done in place of an answer.
    enum class Fault : std::uint8_t {
        none,
        silence, ///< nothing until the client goes
        close,   ///< the connection ends
        garbage  ///< bytes that aren't HTTP
    };

    /// How the end of the body is told.
    enum class Framing : std::uint8_t { length, chunks };

    // With the {} a row names only the members that it needs. NOLINTBEGIN(*-redundant-member-init)
    struct Answer {
        int status = 200;
        Headers headers{};
        std::string body{};
        Framing framing = Framing::length;
        /// Told in place of the body's true length; the connection ends behind the body.
        std::optional<std::size_t> claimedLength{};
        Duration delay{}; ///< before the first byte
        std::size_t pieceInBytes = 64U << 10U;
        Duration pause{}; ///< behind each piece of the body
        Fault fault = Fault::none;
    };
    // NOLINTEND(*-redundant-member-init)
    using Handler = std::function<Answer(const Request&)>;

    LoopbackServer();
    /// Ends all connections, whatever they are at.
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    static Answer redirect(std::string target, int status = 302);

    /// "http://127.0.0.1:⟨port⟩⟨path⟩"
    std::string address(std::string_view path = "/") const;

    /// From now on this is the answer for the path.
    void set(std::string path, Answer answer);
    /// Asked for all paths without an answer of their own; without a handler they are 404.
    void setHandler(Handler handler);

    /// The first 10,000 requests.
    std::vector<Request> requests() const;
    /// Wait until there have been so many requests, or until so many connections have ended; false if
    /// that takes more than five seconds.
    bool waitForRequests(std::size_t count) const;
    bool waitForEndedConnections(std::size_t count) const;

private:
    class Core;
    std::unique_ptr<Core> core_;
};

} // namespace querlin
