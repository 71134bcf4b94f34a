#pragma once

#include "foundation/MainQueue.h"
#include "speech/AudioEngine.h"

#include <memory>
#include <string>

namespace querlin {

class PulseConnection;

/// The inputs of a sound server that speaks PulseAudio's language. Without one there are no devices; each
/// call looks again.
class PulseAudio final : public AudioHardware {
public:
    /// The address of a server, or empty for the user's own.
    explicit PulseAudio(MainQueue& queue, std::string server = {});
    ~PulseAudio() override;

    std::vector<Device> devices() override;
    std::uint32_t defaultInput() override;
    std::unique_ptr<AudioEngine> makeEngine() override;

private:
    MainQueue& queue_;
    std::unique_ptr<PulseConnection> connection_;
};

} // namespace querlin
