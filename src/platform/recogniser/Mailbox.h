#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include <sys/eventfd.h>
#include <unistd.h>

namespace querlin {

/// Orders from any thread to the one that carries them out, which waits for them at a descriptor. Sending
/// takes no lock, so it waits for nobody: not even for a receiver that the system has just put to sleep.
template<class Order>
class Mailbox {
public:
    Mailbox() : wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    ~Mailbox() {
        takeAll();
        if (wakeUp_ >= 0) ::close(wakeUp_);
    }
    Mailbox(const Mailbox&) = delete;
    Mailbox& operator=(const Mailbox&) = delete;

    void send(Order order) {
        Letter* former = newest_.load();
        auto* const letter = std::make_unique<Letter>(std::move(order), former).release();
        while (!newest_.compare_exchange_weak(former, letter)) letter->before = former;
        // Who finds others there relies on the first of them to have woken the receiver, or to do so. The
        // letter itself may be gone by now.
        if (!former) ::eventfd_write(wakeUp_, 1);
    }

    /// All that has come, in its order. The receiver's thread.
    std::vector<Order> takeAll() {
        eventfd_t count = 0;
        ::eventfd_read(wakeUp_, &count);
        std::vector<Order> orders;
        for (auto* next = newest_.exchange(nullptr); next;) {
            const std::unique_ptr<Letter> letter(next);
            orders.push_back(std::move(letter->order));
            next = letter->before;
        }
        std::ranges::reverse(orders);
        return orders;
    }

    /// Readable when there is something to take.
    int descriptor() const { return wakeUp_; }

private:
    struct Letter {
        Letter(Order content, Letter* former) : order(std::move(content)), before(former) {}
        Order order;
        Letter* before;
    };

    int wakeUp_;
    std::atomic<Letter*> newest_ = nullptr;
};

} // namespace querlin
