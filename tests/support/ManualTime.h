#pragma once

#include "foundation/Runtime.h"

#include <deque>
#include <map>
#include <memory>
#include <mutex>

namespace querlin {

/// Main queue, clock and background pool in one, on the test's own thread: nothing happens by itself,
/// and time moves by `advance`.
class ManualTime final : public MainQueue, public Clock, public Executor {
public:
    void post(Work work) override;
    Registration after(Duration delay, Work work) override;
    void run(Work work) override;
    Date now() const override { return start_ + std::chrono::duration_cast<Date::duration>(elapsed_); }
    Instant instant() const override { return Instant() + elapsed_; }

    Runtime runtime() { return {*this, *this, *this}; }

    /// Runs everything that is due at this moment, until nothing is left.
    void settle();
    /// Moves time on, timer by timer, and settles at each.
    void advance(Duration span);
    /// Sets the calendar, not the span since the beginning.
    void setDate(Date date) { start_ = date - std::chrono::duration_cast<Date::duration>(elapsed_); }

    /// While held, background work waits.
    bool holdBackground = false;

    std::size_t pendingTimers() const { return timers_->size(); }

private:
    using Timers = std::map<std::pair<Duration, std::uint64_t>, Work>;

    bool step();

    /// 2026-03-14 09:30:00 in Berlin.
    Date start_ = std::chrono::sys_days(std::chrono::year(2026) / 3 / 14) + std::chrono::minutes(8 * 60 + 30);
    Duration elapsed_{0};
    mutable std::mutex mutex_; // Work may be posted from real threads.
    std::deque<Work> posted_;
    std::deque<Work> background_;
    std::shared_ptr<Timers> timers_ = std::make_shared<Timers>();
    std::uint64_t lastTimer_ = 0;
};

} // namespace querlin
