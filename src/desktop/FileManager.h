#pragma once

#include <functional>
#include <string>

namespace querlin {

/// The desktop's file manager. Main thread.
class FileManager {
public:
    virtual ~FileManager() = default;
    /// Shows a file selected in its folder, without waiting for that. `url` is of the scheme "file"; `failed`
    /// is called, and not from within this call, when no file manager has done it.
    virtual void show(std::string url, std::function<void()> failed) = 0;
};

} // namespace querlin
