#pragma once

#include "foundation/MainQueue.h"
#include "speech/AudioEngine.h"

#include <memory>
#include <string>

namespace querlin {

class PulseConnection;
struct PulseInputs;

/// The inputs of a sound server that speaks PulseAudio's language. Without one there are no devices until it
/// comes.
class PulseAudio final : public AudioHardware {
public:
    /// The address of a server, or empty for the user's own.
    explicit PulseAudio(MainQueue& queue, std::string server = {});
    ~PulseAudio() override;

    std::shared_ptr<const Inputs> inputs() override;
    std::unique_ptr<AudioEngine> makeEngine() override;

private:
    MainQueue& queue_;
    std::unique_ptr<PulseConnection> connection_;
    std::shared_ptr<const PulseInputs> known_; ///< what `inputs_` was made of
    std::shared_ptr<const Inputs> inputs_;
};

} // namespace querlin
