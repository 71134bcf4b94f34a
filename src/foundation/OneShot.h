#pragma once

#include "foundation/MainQueue.h"

#include <coroutine>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace querlin {

/// Passes one value from any thread to the task that waits for it on the main thread.
///
///     OneShot<std::string> answer(queue);
///     service.ask([reply = answer.sender()](std::string text) { reply.send(std::move(text)); });
///     const std::string text = co_await answer;
///
/// The first value sent counts; later ones, and one that comes after the waiter has gone, are
/// dropped. If no value is ever sent, the wait never ends.
template<class Value>
class OneShot {
    struct State {
        explicit State(MainQueue& mainQueue) : queue(mainQueue) {}
        MainQueue& queue;
        std::mutex mutex;
        std::optional<Value> value;
        bool sent = false;
        std::coroutine_handle<> waiter; // Set and cleared under the lock, resumed on the main thread.

        void resumeWaiter() {
            std::unique_lock guard(mutex);
            const auto frame = std::exchange(waiter, nullptr);
            guard.unlock();
            if (frame) frame.resume();
        }
    };

public:
    /// The sending end; may be copied, and may outlive the receiver. Any thread.
    class Sender {
    public:
        explicit Sender(std::shared_ptr<State> state) : state_(std::move(state)) {}
        void send(Value value) const {
            const std::scoped_lock guard(state_->mutex);
            if (std::exchange(state_->sent, true)) return;
            state_->value.emplace(std::move(value));
            if (state_->waiter) state_->queue.post([state = state_] { state->resumeWaiter(); });
        }

    private:
        std::shared_ptr<State> state_;
    };

    class Awaiter {
    public:
        explicit Awaiter(std::shared_ptr<State> state) : state_(std::move(state)) {}
        Awaiter(const Awaiter&) = delete;
        Awaiter& operator=(const Awaiter&) = delete;
        ~Awaiter() {
            const std::scoped_lock guard(state_->mutex);
            state_->waiter = nullptr;
        }
        bool await_ready() const noexcept { return false; }
        bool await_suspend(std::coroutine_handle<> frame) {
            const std::scoped_lock guard(state_->mutex);
            if (state_->value) return false;
            state_->waiter = frame;
            return true;
        }
        Value await_resume() {
            const std::scoped_lock guard(state_->mutex);
            return std::move(*state_->value);
        }

    private:
        std::shared_ptr<State> state_;
    };

    explicit OneShot(MainQueue& queue) : state_(std::make_shared<State>(queue)) {}

    Sender sender() const { return Sender(state_); }
    /// To be awaited once. A value that is there already is taken without a wait.
    Awaiter operator co_await() const { return Awaiter(state_); }

private:
    std::shared_ptr<State> state_;
};

} // namespace querlin
