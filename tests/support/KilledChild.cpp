#include "support/KilledChild.h"

#include <array>
#include <csignal>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace querlin {

std::string killedAfter(char sign, std::vector<std::string> command, std::chrono::microseconds delay) {
    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
    std::vector<char*> arguments;
    for (auto& word : command) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t child = 0;
    const int failure = ::posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(pipe[1]);
    if (failure != 0) throw std::runtime_error("no child");

    std::string told;
    char next = 0;
    while (!told.ends_with(sign) && ::read(pipe[0], &next, 1) == 1) told += next;
    std::this_thread::sleep_for(delay);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    while (::read(pipe[0], &next, 1) == 1) told += next;
    ::close(pipe[0]);
    return told;
}

} // namespace querlin
