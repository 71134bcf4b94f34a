#pragma once

#include "foundation/OneShot.h"
#include "foundation/Runtime.h"
#include "foundation/Task.h"

#include <exception>
#include <type_traits>
#include <variant>

namespace querlin {

/// Suspends the awaiting task for a span of time, also for 0: `co_await sleepFor(queue, seconds(0.25));`
class [[nodiscard]] SleepAwaiter {
public:
    SleepAwaiter(MainQueue& queue, Duration span) : queue_(queue), span_(span) {}
    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> frame) {
        timer_ = queue_.after(span_, [frame] { frame.resume(); });
    }
    void await_resume() const noexcept {}

private:
    MainQueue& queue_;
    Duration span_;
    Registration timer_;
};

inline SleepAwaiter sleepFor(MainQueue& queue, Duration span) { return {queue, span}; }

/// Runs `work` in the background and returns its result on the main thread; exceptions are rethrown there.
/// Abandoning the wait doesn't stop work that has begun; its result is dropped.
///
///     const auto words = co_await background(runtime, std::move(count));
template<class Call>
Task<std::invoke_result_t<Call&>> background(Runtime runtime, Call work) {
    using Result = std::invoke_result_t<Call&>;
    static_assert(!std::is_void_v<Result>, "background work hands a result back");
    using Outcome = std::variant<Result, std::exception_ptr>;

    const OneShot<Outcome> done(runtime.mainQueue);
    runtime.background.run([sender = done.sender(), work = std::move(work)]() mutable {
        try {
            sender.send(Outcome(std::in_place_index<0>, work()));
        } catch (...) {
            sender.send(Outcome(std::in_place_index<1>, std::current_exception()));
        }
    });
    Outcome outcome = co_await done;
    if (outcome.index() == 1) std::rethrow_exception(std::get<1>(outcome));
    co_return std::get<0>(std::move(outcome));
}

} // namespace querlin
