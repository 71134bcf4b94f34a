#pragma once

#include "foundation/Time.h"

#include <condition_variable>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace querlin {

/// A server on 127.0.0.1 that answers each path with scripted bytes, however wrong, and serves one request on each
/// connection. Any thread.
class LoopbackServer {
public:
    struct Request {
        std::string method, path;
        std::string head; ///< as it came, with all header lines
    };
    struct Answer {
        std::string bytes; ///< of a HEAD the head alone is sent
        std::size_t pieceInBytes = 64U << 10U;
        Duration pause{};         ///< after each piece
        bool staysSilent = false; ///< after the last byte, until the client goes

        /// With headers as lines that end with "\r\n".
        static Answer of(std::string_view body, std::string_view headers = "", int status = 200,
                         std::optional<std::size_t> claimedLength = {});
        static Answer redirect(std::string_view target) { return of("umgezogen", "Location: " + std::string(target) + "\r\n", 302); }
    };

    LoopbackServer();
    /// Ends all connections, whatever they are at.
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    /// "http://127.0.0.1:⟨port⟩⟨path⟩"
    std::string address(std::string_view path = "/") const;
    /// From now on this is the answer for the path; without one it is 404.
    void set(std::string path, Answer answer);
    std::vector<Request> requests() const;
    /// Wait until there have been so many requests, or until so many connections have ended; false if that takes more
    /// than five seconds.
    bool waitForRequests(std::size_t count) const;
    bool waitForEndedConnections(std::size_t count) const;

private:
    void accept();
    void serve(int socket);
    bool wait(const std::size_t& counter, std::size_t count) const;

    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::map<std::string, Answer> answers_;
    std::vector<Request> requests_;
    std::size_t requestCount_ = 0, endedCount_ = 0;
    std::vector<int> sockets_; ///< that are open
    bool isEnding_ = false;
    int listener_ = -1, port_ = 0;
    std::list<std::jthread> clients_;
    std::jthread accepting_;
};

} // namespace querlin
