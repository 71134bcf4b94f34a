#pragma once

#include "foundation/Time.h"
#include "foundation/WakeUp.h"
#include "platform/pulse/WavSound.h"

#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <pulse/pulseaudio.h>

namespace querlin {

/// Plays short sounds, each in a stream of its own, on a thread of its own that nobody waits for.
class SoundOutput {
public:
    explicit SoundOutput(std::string server);
    /// What still sounds is cut off.
    ~SoundOutput();
    SoundOutput(const SoundOutput&) = delete;
    SoundOutput& operator=(const SoundOutput&) = delete;

    /// From any thread.
    void play(std::shared_ptr<const WavSound> sound, std::string name);

private:
    struct Order {
        std::shared_ptr<const WavSound> sound;
        std::string name;
        Instant asked;

        /// What comes late says something wrong.
        bool isLate() const;
    };
    struct FreeLoop {
        void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
    };
    struct EndContext {
        void operator()(pa_context* context) const;
    };
    struct EndStream {
        void operator()(pa_stream* stream) const;
    };
    struct Playing {
        SoundOutput& output;
        Order order;
        std::unique_ptr<pa_stream, EndStream> stream;
        bool isOver = false;
    };

    // On the thread
    void serve();
    void takeOrders();
    void connect();
    void contextChanged();
    bool isReady() const;
    void startWaiting();
    void start(Order order);
    void streamChanged(Playing& playing);
    void end(Playing& playing) const;

    const std::string server_;
    const WakeUp wakeUp_;

    std::mutex mutex_;
    std::vector<Order> orders_;
    bool isEnding_ = false;

    // The thread's
    std::unique_ptr<pa_mainloop, FreeLoop> loop_;
    std::unique_ptr<pa_context, EndContext> context_;
    std::vector<Order> waiting_; ///< for the connection
    std::list<Playing> playing_;
    bool isSilenceNoted_ = false;

    std::jthread thread_; ///< last: its end is awaited before the rest goes
};

} // namespace querlin
