#pragma once

#include "platform/helper/HelperLoop.h"

#include <atomic>
#include <memory>
#include <thread>

#include <sys/types.h>

namespace querlin {

/// A helper process with a thread of the program that speaks to it. The process is started by the first order
/// that needs it, and kept.
///
/// A helper that dies is started once more if its client has something to do for it; one that dies while it
/// loads what it is to work with is started twice at most. One that has shown no sign of life for
/// `longestSilence` while something is expected of it is killed, and all that is under way fails.
class Helper {
public:
    using Orders = Mailbox<HelperOrder>;

    Helper(HelperSetup setup, std::unique_ptr<HelperClient> client);
    /// What is under way fails. Waits for a call of the client that is being made, unless it is that call
    /// which lets the helper go.
    ~Helper();
    Helper(const Helper&) = delete;
    Helper& operator=(const Helper&) = delete;

    /// Where orders go, from any thread. It may outlive the helper; then nobody carries them out.
    const std::shared_ptr<Orders>& orders() const { return orders_; }
    /// The running process; -1 if there is none.
    pid_t process() const { return process_->load(); }

private:
    std::shared_ptr<Orders> orders_ = std::make_shared<Orders>();
    std::shared_ptr<std::atomic<pid_t>> process_ = std::make_shared<std::atomic<pid_t>>(-1);
    HelperLoop* loop_; ///< the thread's own
    std::jthread thread_;
};

} // namespace querlin
