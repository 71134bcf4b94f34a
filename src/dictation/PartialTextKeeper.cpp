#include "dictation/PartialTextKeeper.h"

namespace querlin {

namespace {

constexpr Duration shortestInterval = std::chrono::seconds(1);

} // namespace

void PartialTextKeeper::update(std::string text) {
    const bool isScheduled = waiting_.has_value();
    waiting_ = std::move(text);
    if (isScheduled) return;
    const auto now = runtime_.clock.instant();
    if (!lastWritten_ || now - *lastWritten_ >= shortestInterval) {
        writeWaiting();
    } else {
        timer_ = runtime_.mainQueue.after(*lastWritten_ + shortestInterval - now, [this] { writeWaiting(); });
    }
}

void PartialTextKeeper::finish() {
    if (waiting_) writeWaiting();
    drop();
}

void PartialTextKeeper::drop() {
    timer_.reset();
    waiting_.reset();
    lastWritten_.reset();
}

void PartialTextKeeper::writeWaiting() {
    lastWritten_ = runtime_.clock.instant();
    write_(*std::exchange(waiting_, std::nullopt));
}

} // namespace querlin
