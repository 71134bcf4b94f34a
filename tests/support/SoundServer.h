#pragma once

#include "speech/AudioBuffer.h"
#include "support/TempFolder.h"

#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

class Program;

/// A PulseAudio of its own, apart from any other on the machine, with microphones that hear what is played
/// into them: sample for sample, as long as rate and channels are the same. Gone with all it has at the end.
class SoundServer {
public:
    /// Whether there is a PulseAudio on this machine; without one no other call may be made.
    static bool isInstalled();

    SoundServer();
    ~SoundServer();
    SoundServer(const SoundServer&) = delete;
    SoundServer& operator=(const SoundServer&) = delete;

    /// Where clients find it.
    std::string address() const;

    /// `places` of the channels in the room are given as the server names them; empty for the usual ones.
    void addMicrophone(std::string name, AudioFormat format = {48000, 1}, std::string_view description = "Mikrofon",
                       std::string_view places = {});
    /// An output with its monitor, and no microphone.
    void addLoudspeaker(std::string name);
    void remove(const std::string& name);
    void setDefaultMicrophone(std::string_view name) { control("set-default-source " + std::string(name)); }
    /// Returns when the last sample has been heard.
    void play(std::string_view name, std::span<const float> samples, AudioFormat format = {48000, 1});

    // Without its modules it starts again: its microphones are gone.
    void kill();
    void start();
    /// It answers nobody, as if it hung.
    void pause();
    void resume();

private:
    /// The number of the module.
    std::string load(const std::string& module) const;
    std::string control(const std::string& command) const;
    std::string client(std::string_view program) const;

    TempFolder folder_;
    std::unique_ptr<Program> process_;                        ///< before its folder
    std::map<std::string, std::vector<std::string>> modules_; ///< of each microphone and loudspeaker
};

} // namespace querlin
