#pragma once

#include "foundation/Task.h"

#include <cstdint>
#include <map>

namespace querlin {

/// Owns tasks that nobody awaits. Destroying the group abandons those still running.
///
/// A task that ends with an exception ends the program: tasks report failures as values.
class TaskGroup {
public:
    TaskGroup() = default;
    ~TaskGroup();
    TaskGroup(const TaskGroup&) = delete;
    TaskGroup& operator=(const TaskGroup&) = delete;

    /// Runs the task up to its first wait before this returns. Main thread only.
    void start(Task<void> task);

    /// Abandons all tasks. Not from within one of them.
    void abandonAll();

    /// Whether no task of the group is still running.
    bool isEmpty() const { return running_.empty(); }

private:
    struct Root;
    static Root drive(TaskGroup& group, std::uint64_t number, Task<void> task);

    std::map<std::uint64_t, std::coroutine_handle<>> running_;
    std::uint64_t lastNumber_ = 0;
};

} // namespace querlin
