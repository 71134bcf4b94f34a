#pragma once

#include "foundation/WakeUp.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <vector>

namespace querlin {

/// Orders from any thread to the one that carries them out, which waits for them at a descriptor. Sending
/// takes no lock, so it waits for nobody: not even for a receiver that the system has just put to sleep.
template<class Order>
class Mailbox {
public:
    Mailbox() = default;
    ~Mailbox() { takeAll(); }
    Mailbox(const Mailbox&) = delete;
    Mailbox& operator=(const Mailbox&) = delete;

    void send(Order order) {
        Letter* former = newest_.load();
        auto* const letter = std::make_unique<Letter>(std::move(order), former).release();
        while (!newest_.compare_exchange_weak(former, letter)) letter->before = former;
        // Who finds others there relies on the first of them to have woken the receiver, or to do so. The
        // letter itself may be gone by now.
        if (!former) wakeUp_.ring();
    }

    /// All that has come, in its order. The receiver's thread.
    std::vector<Order> takeAll() {
        wakeUp_.clear();
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
    int descriptor() const { return wakeUp_.descriptor(); }

private:
    struct Letter {
        Letter(Order content, Letter* former) : order(std::move(content)), before(former) {}
        Order order;
        Letter* before;
    };

    WakeUp wakeUp_;
    std::atomic<Letter*> newest_ = nullptr;
};

} // namespace querlin
