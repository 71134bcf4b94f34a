#include "foundation/RepeatingTimer.h"

namespace querlin {

struct RepeatingTimer::State {
    MainQueue& queue;
    Duration interval;
    Work tick;
    Registration next;
};

RepeatingTimer::RepeatingTimer(MainQueue& queue, Duration interval, Work tick) :
    state_(std::make_shared<State>(queue, interval, std::move(tick), Registration())) {
    schedule(state_);
}

void RepeatingTimer::schedule(const std::shared_ptr<State>& state) {
    state->next = state->queue.after(state->interval, [weak = std::weak_ptr(state)] {
        if (const auto alive = weak.lock()) {
            schedule(alive);
            alive->tick();
        }
    });
}

} // namespace querlin
