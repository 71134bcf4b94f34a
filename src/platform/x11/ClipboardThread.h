#pragma once

#include "foundation/WakeUp.h"
#include "platform/x11/ClipboardSession.h"

#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <string>
#include <thread>

namespace querlin {

/// The thread that all of the clipboard happens on. It connects at the first need, and again when the
/// connection was lost. A write also takes its turn while something is being read.
class ClipboardThread {
public:
    using Captured = std::function<void(ClipboardSnapshot)>;

    explicit ClipboardThread(std::string display);
    /// Hands what is offered over to a clipboard manager.
    ~ClipboardThread();
    ClipboardThread(const ClipboardThread&) = delete;
    ClipboardThread& operator=(const ClipboardThread&) = delete;

    /// `captured` is called exactly once, on the thread.
    void capture(Captured captured);
    /// Becomes true when the contents are on the clipboard, false if they can't be put there.
    std::future<bool> write(SelectionContents contents);

private:
    struct Write {
        SelectionContents contents;
        std::promise<bool> done;
    };

    void run();
    void connect();
    void disconnect();
    bool serve(Instant deadline);
    void doWrites();
    /// False if there was none to do.
    bool doCapture();

    const std::string display_;
    WakeUp wakeUp_;
    std::mutex mutex_;
    std::deque<Write> writes_;               ///< guarded by the mutex
    std::deque<Captured> captures_;          ///< guarded by the mutex
    bool isEnding_ = false;                  ///< guarded by the mutex
    const XcbConnection* present_ = nullptr; ///< guarded by the mutex; to be broken off

    std::unique_ptr<ClipboardSession> session_; ///< of the thread alone
    bool isFailureNoted_ = false;
    std::promise<void> ended_;
    std::thread thread_;
};

} // namespace querlin
