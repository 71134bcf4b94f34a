#include "support/ManualTime.h"

namespace querlin {

void ManualTime::post(Work work) {
    const std::scoped_lock guard(mutex_);
    posted_.push_back(std::move(work));
}

void ManualTime::run(Work work) {
    const std::scoped_lock guard(mutex_);
    background_.push_back(std::move(work));
}

Registration ManualTime::after(Duration delay, Work work) {
    const std::pair key{elapsed_ + std::max(delay, Duration(0)), ++lastTimer_};
    timers_->emplace(key, std::move(work));
    return Registration([weak = std::weak_ptr(timers_), key] {
        if (const auto timers = weak.lock()) {
            const auto withdrawn = timers->extract(key); // Destroyed after the map is whole again.
        }
    });
}

bool ManualTime::step() {
    Work next;
    {
        const std::scoped_lock guard(mutex_);
        if (!posted_.empty()) {
            next = std::move(posted_.front());
            posted_.pop_front();
        } else if (!background_.empty() && !holdBackground) {
            next = std::move(background_.front());
            background_.pop_front();
        }
    }
    if (!next && !timers_->empty() && timers_->begin()->first.first <= elapsed_) {
        next = std::move(timers_->extract(timers_->begin()).mapped());
    }
    if (!next) return false;
    next();
    return true;
}

void ManualTime::settle() {
    while (step()) {
    }
}

void ManualTime::advance(Duration span) {
    const auto target = elapsed_ + span;
    settle();
    while (!timers_->empty() && timers_->begin()->first.first <= target) {
        elapsed_ = timers_->begin()->first.first;
        settle();
    }
    elapsed_ = target;
}

} // namespace querlin
