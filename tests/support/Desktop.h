#pragma once

#include "foundation/RunLoop.h"
#include "foundation/TaskGroup.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace querlin {

/// Whether the test runs in a desktop of its own (tools/virtual-desktop), which it may do with as it likes.
bool isInVirtualDesktop();

/// Another program, ended with this object.
class Program {
public:
    /// Found by PATH; what it prints goes into the desktop's log folder.
    explicit Program(std::vector<std::string> commandLine);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    pid_t id() const { return id_; }
    void signal(int number) const;

private:
    pid_t id_ = -1;
};

/// The output of a shell command without trailing line ends; empty if it fails.
std::string shell(const std::string& command);
bool isInstalled(const std::string& program);

/// Firefox with a profile of its own in this folder, showing a page with this body, and no welcome of its own.
std::vector<std::string> firefoxWith(const std::filesystem::path& folder, const std::string& body);

/// Waits until something is so, without a main queue.
bool eventually(const std::function<bool()>& reached, Duration longest = std::chrono::seconds(10));
/// Serves the main queue until something is so.
bool serveUntil(RunLoop& loop, const std::function<bool()>& reached, Duration longest = std::chrono::seconds(10));
/// Serves the main queue for a span.
void serve(RunLoop& loop, Duration span);

/// Serves the main queue until a task has ended, and gives its value.
template<class Value>
Value await(RunLoop& loop, Task<Value> task) {
    std::optional<Value> value;
    const auto keep = [](Task<Value> inner, std::optional<Value>& result) -> Task<> { result.emplace(co_await std::move(inner)); };
    TaskGroup group;
    group.start(keep(std::move(task), value));
    serveUntil(loop, [&] { return value.has_value(); }, std::chrono::seconds(60));
    return std::move(value.value());
}

} // namespace querlin
