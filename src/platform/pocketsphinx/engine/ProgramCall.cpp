#include "platform/pocketsphinx/engine/ProgramCall.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace querlin {

namespace {

constexpr std::size_t largestOutputInBytes = 4U << 20U;

/// The program's process and our end of its input and output. A socket serves for both: it can be told that
/// nothing more will come while its other direction stays open.
class Call {
public:
    explicit Call(std::vector<std::string>& command) {
        std::array<int, 2> sockets{};
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets.data()) != 0) return;
        socket_ = sockets[0];
        std::vector<char*> arguments;
        arguments.reserve(command.size() + 1);
        for (auto& word : command) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions{};
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, sockets[1], STDIN_FILENO);
        ::posix_spawn_file_actions_adddup2(&actions, sockets[1], STDOUT_FILENO);
        ::posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
        if (::posix_spawnp(&id_, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) id_ = -1;
        ::posix_spawn_file_actions_destroy(&actions);
        ::close(sockets[1]);
    }
    ~Call() {
        if (socket_ >= 0) ::close(socket_);
        if (id_ < 0) return;
        ::kill(id_, SIGKILL);
        ::waitpid(id_, nullptr, 0);
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    bool isRunning() const { return id_ >= 0; }
    int socket() const { return socket_; }

    bool hasSucceeded() {
        int status = 0;
        while (::waitpid(id_, &status, 0) < 0 && errno == EINTR) {
        }
        id_ = -1;
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

private:
    pid_t id_ = -1;
    int socket_ = -1;
};

/// Writes what it can; true if all is written.
bool write(int socket, std::string_view& rest) {
    const auto count = ::send(socket, rest.data(), rest.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count > 0) rest.remove_prefix(static_cast<std::size_t>(count));
    return rest.empty();
}

} // namespace

std::optional<std::string> outputOf(std::vector<std::string> command, std::string_view input,
                                    Duration limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    Call call(command);
    if (!call.isRunning()) return std::nullopt;
    std::string output;
    bool isWritten = false;
    for (;;) {
        const auto left = end - std::chrono::steady_clock::now();
        if (left <= Duration(0) || output.size() > largestOutputInBytes) return std::nullopt;
        if (!isWritten && write(call.socket(), input)) {
            isWritten = true;
            ::shutdown(call.socket(), SHUT_WR);
        }
        const auto events = static_cast<short>(isWritten ? POLLIN : POLLIN | POLLOUT);
        pollfd descriptor{.fd = call.socket(), .events = events, .revents = 0};
        ::poll(&descriptor, 1, static_cast<int>(left / std::chrono::milliseconds(1)) + 1);
        if ((descriptor.revents & ~POLLOUT) == 0) continue;
        std::array<char, 8192> bytes{};
        const auto count = ::recv(call.socket(), bytes.data(), bytes.size(), MSG_DONTWAIT);
        if (count < 0 && (errno == EAGAIN || errno == EINTR)) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) break;
        output.append(bytes.data(), static_cast<std::size_t>(count));
    }
    if (!call.hasSucceeded()) return std::nullopt;
    return output;
}

} // namespace querlin
