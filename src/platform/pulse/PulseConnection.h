#pragma once

#include "foundation/Registration.h"
#include "speech/AudioBuffer.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <list>
#include <memory>
#include <optional>
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
};

/// The connection to the sound server: made at the first need, and anew when it was lost. Main thread, but
/// for what listeners are called on. A lock must not be held where it is taken.
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

    /// The error is a German text. The lock must be held.
    std::expected<pa_context*, std::string> connect();
    /// Waits until `reached`, for a while at most; callbacks must wake it up. The lock must be held.
    bool wait(const std::function<bool()>& reached);
    /// Whether the last wait was in vain, a moment ago. Until it has answered again, or that is a while ago,
    /// a server is hardly waited for: a call of the program is held up once, not at each question.
    bool isHung() const { return pa_rtclock_now() < hungUntil_; }
    /// From a callback of the loop, or with its lock held.
    void wakeUp() { pa_threaded_mainloop_signal(loop_.get(), 0); }

    // Without a server nothing.
    std::vector<PulseSource> sources();
    std::optional<PulseSource> source(std::uint32_t index);
    std::optional<PulseSource> source(const std::string& name);
    /// Nothing for a monitor: that is no microphone.
    std::optional<PulseSource> defaultMicrophone();

    /// `event` is called on the loop when anything has happened to sources, to the default or to the
    /// connection.
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
            pa_context_disconnect(context);
            pa_context_unref(context);
        }
    };

    void tellListeners();
    void watchContext();
    void finish(pa_operation* operation);
    template<class Ask>
    std::vector<PulseSource> askForSources(Ask ask);

    const std::string server_;
    std::unique_ptr<pa_threaded_mainloop, FreeLoop> loop_;
    std::unique_ptr<pa_context, FreeContext> context_;
    pa_usec_t hungUntil_ = 0;
    std::list<std::function<void()>> listeners_; ///< guarded by the lock
};

} // namespace querlin
