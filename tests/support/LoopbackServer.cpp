#include "support/LoopbackServer.h"

#include <array>
#include <stdexcept>

#include <fmt/format.h>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace querlin {

namespace {

constexpr std::string_view headEnd = "\r\n\r\n";

std::optional<LoopbackServer::Request> readRequest(int socket) {
    std::string head;
    for (std::array<char, 4096> bytes{}; !head.contains(headEnd);) {
        const auto count = ::recv(socket, bytes.data(), bytes.size(), 0);
        if (count <= 0 || bytes[0] == 0x16) return std::nullopt; // It speaks TLS.
        head.append(bytes.data(), static_cast<std::size_t>(count));
    }
    const auto method = head.substr(0, head.find(' '));
    const auto path = head.substr(method.size() + 1, head.find(' ', method.size() + 1) - method.size() - 1);
    return LoopbackServer::Request{method, path, head};
}

void give(int socket, const LoopbackServer::Answer& answer, bool isHead) {
    const auto bytes = std::string_view(answer.bytes).substr(0, isHead ? answer.bytes.find(headEnd) + headEnd.size() : std::string::npos);
    for (std::size_t at = 0; at < bytes.size(); at += answer.pieceInBytes) {
        const auto piece = bytes.substr(at, answer.pieceInBytes);
        if (::send(socket, piece.data(), piece.size(), MSG_NOSIGNAL) < 0) return;
        std::this_thread::sleep_for(answer.pause);
    }
    char ignored = 0;
    while (answer.staysSilent && ::recv(socket, &ignored, 1, 0) > 0) {
    }
}

} // namespace

LoopbackServer::Answer LoopbackServer::Answer::of(std::string_view body, std::string_view headers, int status,
                                                  std::optional<std::size_t> claimedLength) {
    return {fmt::format("HTTP/1.1 {} Scripted\r\nConnection: close\r\nContent-Length: {}\r\n{}\r\n{}", status,
                        claimedLength.value_or(body.size()), headers, body)};
}

LoopbackServer::LoopbackServer() : listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const generic = reinterpret_cast<sockaddr*>(&place); // NOLINT: as the calls want it
    socklen_t size = sizeof place;
    if (::bind(listener_, generic, size) != 0 || ::listen(listener_, 32) != 0 || ::getsockname(listener_, generic, &size) != 0)
        throw std::runtime_error("no port for the server");
    port_ = ntohs(place.sin_port);
    accepting_ = std::jthread([this] { accept(); });
}

LoopbackServer::~LoopbackServer() {
    {
        const std::scoped_lock guard(mutex_);
        isEnding_ = true;
        ::shutdown(listener_, SHUT_RDWR);
        for (const int socket : sockets_) ::shutdown(socket, SHUT_RDWR);
    }
    accepting_.join();
    clients_.clear();
    ::close(listener_);
}

void LoopbackServer::accept() {
    while (true) {
        const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        const std::scoped_lock guard(mutex_);
        if (isEnding_ && socket >= 0) ::close(socket);
        if (isEnding_) return;
        if (socket < 0) continue;
        sockets_.push_back(socket);
        clients_.emplace_back([this, socket] { serve(socket); });
    }
}

void LoopbackServer::serve(int socket) {
    if (const auto request = readRequest(socket)) {
        std::unique_lock guard(mutex_);
        requests_.push_back(*request);
        ++requestCount_;
        changed_.notify_all();
        const auto found = answers_.find(request->path);
        const auto answer = found == answers_.end() ? Answer::of("", "", 404) : found->second;
        guard.unlock();
        give(socket, answer, request->method == "HEAD");
    }
    const std::scoped_lock guard(mutex_);
    std::erase(sockets_, socket);
    ::close(socket);
    ++endedCount_;
    changed_.notify_all();
}

std::string LoopbackServer::address(std::string_view path) const { return fmt::format("http://127.0.0.1:{}{}", port_, path); }

void LoopbackServer::set(std::string path, Answer answer) {
    const std::scoped_lock guard(mutex_);
    answers_.insert_or_assign(std::move(path), std::move(answer));
}

std::vector<LoopbackServer::Request> LoopbackServer::requests() const {
    const std::scoped_lock guard(mutex_);
    return requests_;
}

bool LoopbackServer::waitForRequests(std::size_t count) const { return wait(requestCount_, count); }
bool LoopbackServer::waitForEndedConnections(std::size_t count) const { return wait(endedCount_, count); }

bool LoopbackServer::wait(const std::size_t& counter, std::size_t count) const {
    std::unique_lock guard(mutex_);
    return changed_.wait_for(guard, std::chrono::seconds(5), [&] { return counter >= count; });
}

} // namespace querlin
