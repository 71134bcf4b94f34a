#include "support/SoundServer.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fmt/format.h>

namespace querlin {

namespace {

struct ClosePipe {
    void operator()(FILE* pipe) const { ::pclose(pipe); }
};

/// What a command of the shell says; throws where it fails.
std::string output(const std::string& command) {
    FILE* pipe = ::popen((command + " 2>/dev/null").c_str(), "re");
    if (!pipe) throw std::runtime_error("no shell");
    std::string text;
    std::array<char, 256> part{};
    while (std::fgets(part.data(), part.size(), pipe)) text += part.data();
    if (::pclose(pipe) != 0) throw std::runtime_error("failed: " + command);
    while (text.ends_with('\n')) text.pop_back();
    return text;
}

} // namespace

bool SoundServer::isInstalled() { return std::system("command -v pulseaudio >/dev/null && command -v pactl >/dev/null") == 0; }

SoundServer::SoundServer() {
    if (isInstalled()) start();
}

SoundServer::~SoundServer() { kill(); }

std::string SoundServer::address() const { return "unix:" + (folder_ / "native").string(); }

void SoundServer::start() {
    writeFile(folder_ / "server.pa",
              "load-module module-native-protocol-unix auth-anonymous=1 socket=" + (folder_ / "native").string() + "\n");
    const auto home = folder_.path().string();
    process_ = ::fork();
    if (process_ == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL); // Of the thread that starts it.
        for (const char* name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH"}) {
            ::setenv(name, home.c_str(), 1);
        }
        ::unsetenv("PULSE_SERVER");
        const int silence = ::open("/dev/null", O_RDWR);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(silence, stream);
        const auto script = (folder_ / "server.pa").string();
        ::execlp("pulseaudio", "pulseaudio", "-n", "-F", script.c_str(), "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
                 "--disable-shm=yes", "--realtime=no", "--high-priority=no", "--log-target=stderr", nullptr);
        ::_exit(127);
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    for (;;) {
        if (::waitpid(process_, nullptr, WNOHANG) == process_) throw std::runtime_error("pulseaudio doesn't start");
        try {
            control("info");
            return;
        } catch (const std::runtime_error&) {
            if (std::chrono::steady_clock::now() > deadline) throw;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }
}

void SoundServer::kill() {
    if (process_ < 0) return;
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
    process_ = -1;
    modules_.clear();
    std::filesystem::remove(folder_ / "native");
}

void SoundServer::pause() { ::kill(process_, SIGSTOP); }

void SoundServer::resume() { ::kill(process_, SIGCONT); }

std::string SoundServer::client(std::string_view program) const {
    return fmt::format("PULSE_SERVER='{}' PULSE_COOKIE='{}' {}", address(), (folder_ / "cookie").string(), program);
}

std::string SoundServer::control(const std::string& command) const { return output(client("pactl " + command)); }

void SoundServer::addMicrophone(std::string name, AudioFormat format, std::string_view description, std::string_view places) {
    const auto sink = name + "_sound";
    const auto map = places.empty() ? std::string() : fmt::format("channel_map={}", places);
    modules_[name] = {control(fmt::format("load-module module-null-sink sink_name={} norewinds=1 format=float32le rate={} channels={} {}",
                                          sink, format.sampleRate, format.channelCount, map)),
                      control(fmt::format("load-module module-remap-source source_name={0} master={1}.monitor format=float32le "
                                          "\"source_properties='device.description=\\\"{2}\\\"'\"",
                                          name, sink, description))};
}

void SoundServer::addLoudspeaker(std::string name) {
    modules_[name] = {control(fmt::format("load-module module-null-sink sink_name={} norewinds=1", name))};
}

void SoundServer::remove(const std::string& name) {
    const auto modules = modules_.extract(name);
    for (auto module = modules.mapped().rbegin(); module != modules.mapped().rend(); ++module) control("unload-module " + *module);
}

void SoundServer::play(std::string_view name, std::span<const float> samples, AudioFormat format) {
    const auto file = folder_ / "played.f32";
    writeFile(file, {reinterpret_cast<const char*>(samples.data()), samples.size_bytes()});
    output(client(fmt::format("pacat --playback --raw --no-remap --format=float32le --rate={} --channels={} --device={}_sound '{}'",
                              format.sampleRate, format.channelCount, name, file.string())));
}

} // namespace querlin
