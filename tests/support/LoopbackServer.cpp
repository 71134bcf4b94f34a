#include "support/LoopbackServer.h"

#include "foundation/TextCase.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <list>
#include <map>
#include <mutex>
#include <stdexcept>
#include <thread>

#include <fmt/format.h>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace querlin {

namespace {

constexpr std::size_t mostConnections = 32;
constexpr std::size_t mostRequestsKept = 10'000;
constexpr std::size_t largestHeadInBytes = 64U << 10U;

class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {
        if (number < 0) throw std::runtime_error("no descriptor for the server");
    }
    ~Descriptor() { ::close(number_); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return number_; }

private:
    int number_;
};

/// Told once; from then on no wait lasts.
class Stop {
public:
    void tell() const { ::eventfd_write(event_.get(), 1); }

    /// Waits until something can be done with the socket; false at the end.
    bool waitFor(int socket, short events) const {
        std::array<pollfd, 2> watched{pollfd{event_.get(), POLLIN, 0}, pollfd{socket, events, 0}};
        while (::poll(watched.data(), watched.size(), -1) < 0 && errno == EINTR) {
        }
        return watched[0].revents == 0;
    }
    /// Lets a span pass; false at the end.
    bool pause(Duration span) const {
        pollfd watched{event_.get(), POLLIN, 0};
        const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(span).count();
        return span <= Duration(0) || ::poll(&watched, 1, static_cast<int>(milliseconds)) == 0;
    }

private:
    Descriptor event_{::eventfd(0, EFD_CLOEXEC)};
};

/// One client's connection; each operation is false, or without a value, once it is over.
class Connection {
public:
    Connection(int socket, const Stop& stop) : socket_(socket), stop_(stop) {
        const int atOnce = 1;
        ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &atOnce, sizeof atOnce);
    }

    std::optional<LoopbackServer::Request> readRequest();
    bool give(const LoopbackServer::Answer& answer, bool isHead);

private:
    bool receive();
    bool send(std::string_view bytes);
    bool sendBody(const LoopbackServer::Answer& answer);

    Descriptor socket_;
    const Stop& stop_;
    std::string received_;
};

bool Connection::receive() {
    std::array<char, 4096> bytes{};
    if (!stop_.waitFor(socket_.get(), POLLIN)) return false;
    const auto count = ::recv(socket_.get(), bytes.data(), bytes.size(), 0);
    if (count > 0) received_.append(bytes.data(), static_cast<std::size_t>(count));
    return count > 0 && received_.size() <= largestHeadInBytes;
}

bool Connection::send(std::string_view bytes) {
    while (!bytes.empty()) {
        if (!stop_.waitFor(socket_.get(), POLLOUT)) return false;
        const auto count = ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0 && errno != EAGAIN) return false;
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return true;
}

/// Cuts the text before the mark off.
std::string takeBefore(std::string_view& text, std::string_view mark) {
    const auto end = std::min(text.find(mark), text.size());
    std::string taken(text.substr(0, end));
    text.remove_prefix(std::min(end + mark.size(), text.size()));
    return taken;
}

std::optional<LoopbackServer::Request> Connection::readRequest() {
    while (!received_.contains("\r\n\r\n")) {
        const bool isHttp = received_.empty() || (received_[0] >= 'A' && received_[0] <= 'Z');
        if (!isHttp || !receive()) return std::nullopt;
    }
    std::string_view rest = received_;
    std::string line = takeBefore(rest, "\r\n");
    std::string_view words = line;
    LoopbackServer::Request request;
    request.method = takeBefore(words, " ");
    request.path = takeBefore(words, " ");
    while (!(line = takeBefore(rest, "\r\n")).empty()) {
        std::string_view value = line;
        std::string name = takeBefore(value, ":");
        if (value.starts_with(' ')) value.remove_prefix(1);
        request.headers.emplace_back(std::move(name), value);
    }
    received_.erase(0, received_.size() - rest.size());
    return request;
}

std::string headOf(const LoopbackServer::Answer& answer) {
    std::string head = fmt::format("HTTP/1.1 {} Scripted\r\n", answer.status);
    for (const auto& [name, value] : answer.headers) head += fmt::format("{}: {}\r\n", name, value);
    if (answer.framing == LoopbackServer::Framing::chunks) return head + "Transfer-Encoding: chunked\r\n\r\n";
    return head + fmt::format("Content-Length: {}\r\n\r\n", answer.claimedLength.value_or(answer.body.size()));
}

bool Connection::sendBody(const LoopbackServer::Answer& answer) {
    const bool isChunked = answer.framing == LoopbackServer::Framing::chunks;
    const std::string_view body = answer.body;
    for (std::size_t at = 0; at < body.size(); at += answer.pieceInBytes) {
        const auto piece = body.substr(at, answer.pieceInBytes);
        if (isChunked && !send(fmt::format("{:x}\r\n", piece.size()))) return false;
        if (!send(piece) || (isChunked && !send("\r\n"))) return false;
        if (!stop_.pause(answer.pause)) return false;
    }
    if (isChunked && !send("0\r\n\r\n")) return false;
    return !answer.claimedLength;
}

bool Connection::give(const LoopbackServer::Answer& answer, bool isHead) {
    if (!stop_.pause(answer.delay)) return false;
    switch (answer.fault) {
    case LoopbackServer::Fault::none:
        return send(headOf(answer)) && (isHead || sendBody(answer));
    case LoopbackServer::Fault::silence:
        while (receive()) {
        }
        return false;
    case LoopbackServer::Fault::close:
        return false;
    case LoopbackServer::Fault::garbage:
        send("Guten Tag!\r\n\r\n");
        return false;
    }
    return false;
}

} // namespace

class LoopbackServer::Core {
public:
    Core();
    ~Core() { stop_.tell(); }
    Core(const Core&) = delete;
    Core& operator=(const Core&) = delete;

    int port() const { return port_; }

    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    std::map<std::string, Answer, std::less<>> answers;
    Handler handler = [](const Request&) { return Answer{.status = 404}; };
    std::vector<Request> requests;
    std::size_t requestCount = 0;
    std::size_t endedConnections = 0;

private:
    struct Client {
        std::atomic<bool> hasGone = false;
        std::jthread thread;
    };

    void acceptClients();
    void serve(int socket);
    Answer answerTo(const Request& request);

    Stop stop_;
    Descriptor listener_{::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    int port_ = 0;
    std::list<Client> clients_; // The accepting thread's.
    std::jthread accepting_;
};

LoopbackServer::Core::Core() {
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const generic = reinterpret_cast<sockaddr*>(&place); // NOLINT: as the calls want it
    socklen_t size = sizeof place;
    if (::bind(listener_.get(), generic, size) != 0 || ::listen(listener_.get(), mostConnections) != 0 ||
        ::getsockname(listener_.get(), generic, &size) != 0) {
        throw std::runtime_error("no port for the server");
    }
    port_ = ntohs(place.sin_port);
    accepting_ = std::jthread([this] { acceptClients(); });
}

void LoopbackServer::Core::acceptClients() {
    while (stop_.waitFor(listener_.get(), POLLIN)) {
        const int socket = ::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0) continue;
        std::erase_if(clients_, [](const Client& client) { return client.hasGone.load(); });
        if (clients_.size() >= mostConnections) {
            ::close(socket);
            continue;
        }
        auto& client = clients_.emplace_back();
        client.thread = std::jthread([this, &client, socket] {
            serve(socket);
            client.hasGone = true;
        });
    }
}

void LoopbackServer::Core::serve(int socket) {
    {
        Connection connection(socket, stop_);
        while (const auto request = connection.readRequest()) {
            if (!connection.give(answerTo(*request), request->method == "HEAD")) break;
        }
    }
    const std::scoped_lock guard(mutex);
    ++endedConnections;
    changed.notify_all();
}

LoopbackServer::Answer LoopbackServer::Core::answerTo(const Request& request) {
    std::unique_lock guard(mutex);
    ++requestCount;
    if (requests.size() < mostRequestsKept) requests.push_back(request);
    changed.notify_all();
    if (const auto found = answers.find(request.path); found != answers.end()) return found->second;
    const auto ask = handler;
    guard.unlock();
    return ask(request);
}

LoopbackServer::LoopbackServer() : core_(std::make_unique<Core>()) {}
LoopbackServer::~LoopbackServer() = default;

LoopbackServer::Answer LoopbackServer::redirect(std::string target, int status) {
    Answer answer;
    answer.status = status;
    answer.headers.emplace_back("Location", std::move(target));
    return answer;
}

std::string LoopbackServer::address(std::string_view path) const { return fmt::format("http://127.0.0.1:{}{}", core_->port(), path); }

void LoopbackServer::set(std::string path, Answer answer) {
    const std::scoped_lock guard(core_->mutex);
    core_->answers.insert_or_assign(std::move(path), std::move(answer));
}

void LoopbackServer::setHandler(Handler handler) {
    const std::scoped_lock guard(core_->mutex);
    core_->handler = std::move(handler);
}

std::vector<LoopbackServer::Request> LoopbackServer::requests() const {
    const std::scoped_lock guard(core_->mutex);
    return core_->requests;
}

bool LoopbackServer::waitForRequests(std::size_t count) const {
    std::unique_lock guard(core_->mutex);
    return core_->changed.wait_for(guard, std::chrono::seconds(5), [&] { return core_->requestCount >= count; });
}

bool LoopbackServer::waitForEndedConnections(std::size_t count) const {
    std::unique_lock guard(core_->mutex);
    return core_->changed.wait_for(guard, std::chrono::seconds(5), [&] { return core_->endedConnections >= count; });
}

std::optional<std::string> LoopbackServer::Request::header(std::string_view name) const {
    const auto found = std::ranges::find_if(headers, [&](const auto& row) { return equalIgnoringCase(row.first, name); });
    return found == headers.end() ? std::nullopt : std::optional(found->second);
}

} // namespace querlin
