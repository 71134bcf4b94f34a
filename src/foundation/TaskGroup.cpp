#include "foundation/TaskGroup.h"

namespace querlin {

struct TaskGroup::Root {
    struct promise_type {
        Root get_return_object() noexcept {
            return {std::coroutine_handle<promise_type>::from_promise(*this)};
        }
        std::suspend_always initial_suspend() const noexcept { return {}; }
        std::suspend_never final_suspend() const noexcept { return {}; }
        void return_void() const noexcept {}
        [[noreturn]] void unhandled_exception() const noexcept { std::terminate(); }
    };
    std::coroutine_handle<promise_type> frame;
};

TaskGroup::Root TaskGroup::drive(TaskGroup& group, std::uint64_t number, Task<void> task) {
    co_await task;
    group.running_.erase(number); // The coroutine frame destroys itself after this line.
}

void TaskGroup::start(Task<void> task) {
    const auto number = ++lastNumber_;
    const auto root = drive(*this, number, std::move(task)).frame;
    running_.emplace(number, root);
    root.resume();
}

TaskGroup::~TaskGroup() { abandonAll(); }

void TaskGroup::abandonAll() {
    // One by one: destructors in a frame may access the group.
    while (!running_.empty()) {
        const auto frame = running_.begin()->second;
        running_.erase(running_.begin());
        frame.destroy();
    }
}

} // namespace querlin
