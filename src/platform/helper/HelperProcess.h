#pragma once

#include <expected>
#include <filesystem>
#include <string>

#include <sys/types.h>

namespace querlin {

/// A running helper and the socket to it. It gets no descriptor but that one, and no place to
/// print to. Its end ends the helper at once. Belongs to one thread, with which the helper dies too.
class HelperProcess {
public:
    /// The error says in German why the system refuses.
    static std::expected<HelperProcess, std::string> start(const std::filesystem::path& program);

    HelperProcess(HelperProcess&& other) noexcept;
    HelperProcess& operator=(HelperProcess&& other) noexcept;
    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;
    ~HelperProcess() { end(); }

    /// Doesn't block.
    int socket() const { return socket_; }
    pid_t id() const { return id_; }

private:
    HelperProcess(pid_t id, int socket) : id_(id), socket_(socket) {}
    void end();

    pid_t id_ = -1;
    int socket_ = -1;
};

} // namespace querlin
