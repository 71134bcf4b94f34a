#pragma once

#include "foundation/Registration.h"
#include "speech/AudioBuffer.h"

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <pulse/pulseaudio.h>

namespace querlin {

/// A source of the server.
struct PulseSource {
    std::uint32_t index = PA_INVALID_INDEX;
    std::string name;        ///< stable across runs
    std::string description; ///< for people
    AudioFormat format;
    pa_channel_map places{}; ///< of the channels in the room
    bool isMonitor = false;

    bool operator==(const PulseSource& other) const {
        return index == other.index && name == other.name && description == other.description &&
               format == other.format && isMonitor == other.isMonitor;
    }
};

/// What the server has, as it said last.
struct PulseInputs {
    std::vector<PulseSource> sources;
    std::string defaultName; ///< of a source

    const PulseSource* named(const std::string& name) const;
    const PulseSource* at(std::uint32_t index) const;
    /// Null for a monitor: that is no microphone.
    const PulseSource* defaultMicrophone() const;
};

/// The connection to the sound server: made at once, and anew when it was lost. What the server has is asked
/// for by the loop at every change, so whoever wants to know it waits for nobody. Main thread, but for what
/// listeners are called on. A lock must not be held where it is taken.
class PulseConnection {
public:
    /// The address of a server, or empty for the user's own.
    explicit PulseConnection(std::string server);
    ~PulseConnection();
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;

    /// Holds the loop: none of its callbacks runs meanwhile.
    class [[nodiscard]] Lock {
    public:
        explicit Lock(PulseConnection& connection) : loop_(connection.loop_.get()) {
            pa_threaded_mainloop_lock(loop_);
        }
        ~Lock() { pa_threaded_mainloop_unlock(loop_); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        pa_threaded_mainloop* loop_;
    };

    /// Null as long as the server isn't there. The lock must be held.
    pa_context* context() const;
    /// Waits until `reached`, a quarter of a second at most; callbacks must wake it up. The lock must be
    /// held.
    bool wait(const std::function<bool()>& reached);
    /// From a callback of the loop, or with its lock held.
    void wakeUp() { pa_threaded_mainloop_signal(loop_.get(), 0); }

    /// What there is; empty without a server. The same object until something changes. The first call waits
    /// for the server's first answer, a quarter of a second at most.
    std::shared_ptr<const PulseInputs> inputs();

    /// `event` is called on the loop after `inputs` has changed, or the connection.
    Registration listen(std::function<void()> event);

private:
    struct FreeLoop {
        void operator()(pa_threaded_mainloop* loop) const {
            pa_threaded_mainloop_stop(loop);
            pa_threaded_mainloop_free(loop);
        }
    };
    struct FreeContext {
        void operator()(pa_context* context) const {
            pa_context_set_state_callback(context, nullptr, nullptr);
            pa_context_set_subscribe_callback(context, nullptr, nullptr);
            pa_context_disconnect(context);
            pa_context_unref(context);
        }
    };

    void connect();
    void contextChanged();
    void connectLater();
    void ask();
    void askForDefault();
    void answered();
    void publish(PulseInputs inputs);
    void notifyListeners();

    const std::string server_;
    std::unique_ptr<pa_threaded_mainloop, FreeLoop> loop_;
    std::unique_ptr<pa_context, FreeContext> context_;
    bool hasWaited_ = false; ///< the main thread's: the first answer was waited for

    // Guarded by the loop's lock
    std::list<std::function<void()>> listeners_;
    pa_time_event* retry_ = nullptr;
    pa_usec_t retryDelay_;
    PulseInputs draft_;
    bool isAsking_ = false;
    bool isStale_ = false; ///< something changed while it was asked for
    bool hasAnswered_ = false;

    std::mutex inputsLock_;
    std::shared_ptr<const PulseInputs> inputs_ = std::make_shared<PulseInputs>();
};

} // namespace querlin
