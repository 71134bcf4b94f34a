#include "state/CoalescedWriter.h"

#include "state/DiagnosticsLog.h"

#include <mutex>
#include <utility>

#include <fmt/format.h>

namespace querlin {

/// Keeps an older version from replacing a newer one.
struct CoalescedWriter::Order {
    std::mutex mutex; ///< held for the length of a write
    std::uint64_t newest = 0;

    FileResult<> run(std::uint64_t number, Write& write) {
        const std::scoped_lock guard(mutex);
        if (number < newest) return {};
        newest = number;
        return write();
    }
};

CoalescedWriter::CoalescedWriter(Runtime runtime, Plan plan) :
    runtime_(runtime), plan_(std::move(plan)), order_(std::make_shared<Order>()) {}

CoalescedWriter::~CoalescedWriter() { flush(); }

void CoalescedWriter::changed() {
    isUnsaved_ = true;
    if (!isScheduled_ && !isUnderWay_) schedule();
}

void CoalescedWriter::schedule() {
    isScheduled_ = true;
    timer_ = runtime_.mainQueue.after(plan_.delay, [this] {
        isScheduled_ = false;
        begin();
    });
}

void CoalescedWriter::begin() {
    isUnsaved_ = false;
    isUnderWay_ = true;
    const auto number = ++lastNumber_;
    auto end = lifetime_.onMain(runtime_.mainQueue,
                                [this, number](const FileResult<>& result) { ended(number, result); });
    runtime_.background.run(
        [order = order_, number, write = plan_.prepare(), end]() mutable { end(order->run(number, write)); });
}

void CoalescedWriter::ended(std::uint64_t number, const FileResult<>& result) {
    if (number != lastNumber_) return; // A flush has written something newer.
    isUnderWay_ = false;
    const bool hasChanged = isUnsaved_;
    take(result);
    if (hasChanged && !isScheduled_) schedule();
}

void CoalescedWriter::flush() {
    timer_.reset();
    isScheduled_ = false;
    if (!isUnsaved_ && !isUnderWay_) return;
    isUnsaved_ = false;
    isUnderWay_ = false;
    auto write = plan_.prepare();
    take(order_->run(++lastNumber_, write));
}

void CoalescedWriter::take(const FileResult<>& result) {
    if (result) {
        if (trouble_.get()) trouble_.set(std::nullopt);
        return;
    }
    isUnsaved_ = true;
    if (trouble_.get()) return; // Reported once.
    auto text = fmt::format("{} nicht gespeichert: {}", plan_.subject, result.error().description());
    DiagnosticsLog::note(plan_.logCategory, text);
    trouble_.set(std::move(text));
}

} // namespace querlin
