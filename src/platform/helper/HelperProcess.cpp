#include "platform/helper/HelperProcess.h"

#include "foundation/Files.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace querlin {

namespace {

/// Where the helper looks for its socket.
constexpr int socketInHelper = 3;
constexpr auto longestReaping = std::chrono::seconds(1);

std::unexpected<std::string> failure(int code) {
    return std::unexpected(FileError{std::error_code(code, std::generic_category())}.description());
}

/// What the child does between its birth and the helper's first instruction.
class SpawnPlan {
public:
    explicit SpawnPlan(int socket) {
        ::posix_spawn_file_actions_init(&actions_);
        for (int output = STDIN_FILENO; output <= STDERR_FILENO; ++output)
            ::posix_spawn_file_actions_addopen(&actions_, output, "/dev/null", O_RDWR, 0);
        ::posix_spawn_file_actions_adddup2(&actions_, socket, socketInHelper);
        ::posix_spawn_file_actions_addclosefrom_np(&actions_, socketInHelper + 1);
        ::posix_spawnattr_init(&attributes_);
        sigset_t none{};
        ::sigemptyset(&none);
        ::posix_spawnattr_setsigmask(&attributes_, &none);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK);
    }
    ~SpawnPlan() {
        ::posix_spawnattr_destroy(&attributes_);
        ::posix_spawn_file_actions_destroy(&actions_);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    /// 0, or the error's code.
    int spawn(pid_t& id, std::string program) const {
        const std::array arguments = {program.data(), static_cast<char*>(nullptr)};
        return ::posix_spawn(&id, program.c_str(), &actions_, &attributes_, arguments.data(), environ);
    }

private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

} // namespace

std::expected<HelperProcess, std::string> HelperProcess::start(const std::filesystem::path& program) {
    std::array<int, 2> sockets{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets.data()) != 0) return failure(errno);
    ::fcntl(sockets[0], F_SETFL, O_NONBLOCK); // NOLINT(*-vararg)
    pid_t id = -1;
    const int code = SpawnPlan(sockets[1]).spawn(id, program.string());
    ::close(sockets[1]);
    if (code != 0) {
        ::close(sockets[0]);
        return failure(code);
    }
    return HelperProcess(id, sockets[0]);
}

HelperProcess::HelperProcess(HelperProcess&& other) noexcept :
    id_(std::exchange(other.id_, -1)), socket_(std::exchange(other.socket_, -1)) {}

HelperProcess& HelperProcess::operator=(HelperProcess&& other) noexcept {
    if (this != &other) {
        end();
        id_ = std::exchange(other.id_, -1);
        socket_ = std::exchange(other.socket_, -1);
    }
    return *this;
}

/// A process that is stuck in the kernel can't be waited for; it is left to the system.
void HelperProcess::end() {
    if (socket_ >= 0) ::close(std::exchange(socket_, -1));
    if (id_ < 0) return;
    const pid_t id = std::exchange(id_, -1);
    ::kill(id, SIGKILL);
    const auto limit = std::chrono::steady_clock::now() + longestReaping;
    while (::waitpid(id, nullptr, WNOHANG) == 0 && std::chrono::steady_clock::now() < limit)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

} // namespace querlin
