#pragma once

#include "foundation/Registration.h"
#include "speech/AudioBuffer.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace querlin {

/// Takes sound from one input. A port; main thread, but for the tap.
///
/// After a change of the hardware that touches the input in use (another default, the device gone, the
/// sound server restarted) the engine calls its observer once; it may have stopped by itself. Whoever
/// wants to go on reads the format, installs the tap anew and starts. Where the sound goes on in the
/// same format, nothing of it is lost in between. No call waits for more than a moment: an input that takes
/// longer to open opens while the program goes on, and the observer is called if it fails.
class AudioEngine {
public:
    using Tap = std::function<void(const AudioBuffer&)>;

    virtual ~AudioEngine() = default;

    /// Forgets the device that was set: the system's default input it is again. Only while stopped.
    virtual void reset() = 0;
    /// Chooses the input by its number of this run. The error is a German text; the choice of before
    /// stands then.
    virtual std::expected<void, std::string> setDevice(std::uint32_t deviceID) = 0;
    /// The format of the input at this moment; sample rate 0 and no channels when there is none.
    virtual AudioFormat inputFormat() = 0;

    /// From now on `tap` gets the sound in buffers of about `frames` frames, on a thread of the engine
    /// and one at a time. There is one tap at most.
    virtual void installTap(std::uint32_t frames, AudioFormat format, Tap tap) = 0;
    /// Hands over what hasn't filled a buffer yet (on this thread) and takes the tap away: after this
    /// call it is neither running nor called again. Harmless without a tap. Not from within the tap.
    virtual void removeTap() = 0;

    /// Begins to capture. The error is a German text.
    virtual std::expected<void, std::string> start() = 0;
    virtual void stop() = 0;
    virtual bool isRunning() const = 0;

    /// `changed` is called on the main thread, never within a call of the engine. One observer at a time.
    virtual Registration observeConfigurationChange(std::function<void()> changed) = 0;
};

/// The inputs of the machine, as the sound server knows them. A port; main thread.
class AudioHardware {
public:
    /// A device of any kind. What can't be read of it is unset.
    struct Device {
        std::uint32_t id = 0;            ///< its number in this run, above 0
        std::optional<std::string> uid;  ///< stable across runs
        std::optional<std::string> name; ///< for people
        std::uint32_t inputChannels = 0; ///< 0 for what is no input
    };

    struct Inputs {
        std::vector<Device> devices;    ///< all devices; empty without a sound server
        std::uint32_t defaultInput = 0; ///< the number of the default input, 0 if there is none
    };

    virtual ~AudioHardware() = default;
    /// What is known at this moment; asks nobody. The same object as long as nothing changes.
    virtual std::shared_ptr<const Inputs> inputs() = 0;
    /// A capture of its own, apart from all others. Doesn't outlive the hardware.
    virtual std::unique_ptr<AudioEngine> makeEngine() = 0;
};

} // namespace querlin
