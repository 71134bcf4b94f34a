#include "support/SoundServer.h"

#include "support/Desktop.h"

#include <csignal>
#include <stdexcept>

#include <fmt/format.h>

namespace querlin {

bool SoundServer::isInstalled() { return querlin::isInstalled("pulseaudio") && querlin::isInstalled("pactl"); }

SoundServer::SoundServer() {
    if (isInstalled()) start();
}

SoundServer::~SoundServer() = default;

std::string SoundServer::address() const { return "unix:" + (folder_ / "native").string(); }

void SoundServer::start() {
    writeFile(folder_ / "server.pa",
              "load-module module-native-protocol-unix auth-anonymous=1 socket=" + (folder_ / "native").string() + "\n");
    const auto home = folder_.path().string();
    std::vector<std::string> command{"env", "-u", "PULSE_SERVER", "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere"};
    for (const auto* name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH"}) {
        command.push_back(fmt::format("{}={}", name, home));
    }
    for (const auto* argument : {"pulseaudio", "-n", "-F", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
                                 "--disable-shm=yes", "--realtime=no", "--high-priority=no"}) {
        command.emplace_back(argument);
        if (command.back() == "-F") command.push_back((folder_ / "server.pa").string());
    }
    process_ = std::make_unique<Program>(std::move(command));
    if (!eventually([this] { return !control("info").empty(); })) throw std::runtime_error("pulseaudio doesn't start");
}

void SoundServer::kill() {
    process_.reset();
    modules_.clear();
    std::filesystem::remove(folder_ / "native");
}

void SoundServer::pause() { process_->signal(SIGSTOP); }

void SoundServer::resume() { process_->signal(SIGCONT); }

std::string SoundServer::client(std::string_view program) const {
    return fmt::format("PULSE_SERVER='{}' PULSE_COOKIE='{}' {}", address(), (folder_ / "cookie").string(), program);
}

std::string SoundServer::load(const std::string& module) const {
    auto number = control("load-module " + module);
    if (number.empty()) throw std::runtime_error("failed: " + module);
    return number;
}

std::string SoundServer::control(const std::string& command) const { return shell(client("pactl " + command)); }

void SoundServer::addMicrophone(std::string name, AudioFormat format, std::string_view description, std::string_view places) {
    const auto sink = name + "_sound";
    const auto map = places.empty() ? std::string() : fmt::format("channel_map={}", places);
    modules_[name] = {load(fmt::format("module-null-sink sink_name={} norewinds=1 format=float32le rate={} channels={} {}", sink,
                                       format.sampleRate, format.channelCount, map)),
                      load(fmt::format("module-remap-source source_name={0} master={1}.monitor format=float32le "
                                       "\"source_properties='device.description=\\\"{2}\\\"'\"",
                                       name, sink, description))};
}

void SoundServer::addLoudspeaker(std::string name) {
    modules_[name] = {load(fmt::format("module-null-sink sink_name={} norewinds=1", name))};
}

void SoundServer::remove(const std::string& name) {
    const auto modules = modules_.extract(name);
    for (auto module = modules.mapped().rbegin(); module != modules.mapped().rend(); ++module) control("unload-module " + *module);
}

void SoundServer::play(std::string_view name, std::span<const float> samples, AudioFormat format) {
    const auto file = folder_ / "played.f32";
    writeFile(file, {reinterpret_cast<const char*>(samples.data()), samples.size_bytes()});
    shell(client(fmt::format("pacat --playback --raw --no-remap --format=float32le --rate={} --channels={} --device={}_sound '{}'",
                             format.sampleRate, format.channelCount, name, file.string())));
}

} // namespace querlin
