#pragma once

#include <coroutine>
#include <exception>
#include <optional>
#include <utility>

namespace querlin {

template<class Value>
class Task;

namespace detail {

/// What the promises of all tasks share.
class TaskPromiseBase {
public:
    struct FinalAwaiter {
        bool await_ready() const noexcept { return false; }
        template<class Promise>
        void await_suspend(std::coroutine_handle<Promise> ended) const noexcept {
            // The finished frame must not be touched after this call: the parent may destroy it.
            if (const auto parent = ended.promise().parent_) parent.resume();
        }
        void await_resume() const noexcept {}
    };

    std::suspend_always initial_suspend() const noexcept { return {}; }
    FinalAwaiter final_suspend() const noexcept { return {}; }
    void unhandled_exception() noexcept { exception_ = std::current_exception(); }

    void rethrowIfFailed() const {
        if (exception_) std::rethrow_exception(exception_);
    }
    void setParent(std::coroutine_handle<> parent) noexcept { parent_ = parent; }

private:
    std::coroutine_handle<> parent_;
    std::exception_ptr exception_;
};

template<class Value>
class TaskPromise final : public TaskPromiseBase {
public:
    Task<Value> get_return_object() noexcept;
    template<class Result>
    void return_value(Result&& result) {
        value_.emplace(std::forward<Result>(result));
    }
    Value takeResult() {
        rethrowIfFailed();
        return std::move(*value_);
    }

private:
    std::optional<Value> value_;
};

template<>
class TaskPromise<void> final : public TaskPromiseBase {
public:
    Task<void> get_return_object() noexcept;
    void return_void() const noexcept {}
    void takeResult() const { rethrowIfFailed(); }
};

} // namespace detail

/// An asynchronous operation of the main thread, written as a coroutine.
///
/// It begins when it is awaited (or started by a `TaskGroup`), and every step of it runs on the main
/// thread. Destroying a task abandons it: the suspended frame is destroyed with all that it holds, and the
/// awaiter that it is suspended in withdraws its callback. A running task can't be destroyed from within
/// itself.
template<class Value = void>
class [[nodiscard]] Task {
public:
    using promise_type = detail::TaskPromise<Value>;

    Task(Task&& other) noexcept : frame_(std::exchange(other.frame_, nullptr)) {}
    Task& operator=(Task&& other) noexcept {
        if (this != &other) {
            if (frame_) frame_.destroy();
            frame_ = std::exchange(other.frame_, nullptr);
        }
        return *this;
    }
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    ~Task() {
        if (frame_) frame_.destroy();
    }

    bool await_ready() const noexcept { return false; }
    /// Resumes the child directly up to its first wait: without optimisation, symmetric transfer between
    /// frames would grow the stack. False if it has already finished.
    bool await_suspend(std::coroutine_handle<> parent) {
        frame_.resume();
        if (frame_.done()) return false;
        frame_.promise().setParent(parent);
        return true;
    }
    Value await_resume() { return frame_.promise().takeResult(); }

private:
    friend promise_type;
    explicit Task(std::coroutine_handle<promise_type> frame) : frame_(frame) {}

    std::coroutine_handle<promise_type> frame_;
};

namespace detail {

template<class Value>
Task<Value> TaskPromise<Value>::get_return_object() noexcept {
    return Task<Value>(std::coroutine_handle<TaskPromise>::from_promise(*this));
}

inline Task<void> TaskPromise<void>::get_return_object() noexcept {
    return Task<void>(std::coroutine_handle<TaskPromise>::from_promise(*this));
}

} // namespace detail

} // namespace querlin
