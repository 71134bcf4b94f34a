#include "platform/qt/QtMainQueue.h"

#include <algorithm>
#include <deque>
#include <limits>
#include <mutex>

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QTimer>

namespace querlin {

namespace {

int inMilliseconds(Duration delay) {
    const auto count = std::chrono::ceil<std::chrono::milliseconds>(delay).count();
    return static_cast<int>(std::clamp<std::int64_t>(count, 0, std::numeric_limits<int>::max()));
}

} // namespace

/// An event says that there is work, and the work lies under a lock of our own: so its way from thread to
/// thread can be followed by tools that don't know the toolkit's.
class QtMainQueue::Receiver final : public QObject {
public:
    void post(Work work) {
        {
            const std::scoped_lock guard(lock_);
            posted_.push_back(std::move(work));
        }
        auto event = std::make_unique<QEvent>(QEvent::User);
        QCoreApplication::postEvent(this, event.release()); // The loop deletes it.
    }

protected:
    void customEvent(QEvent* /*event*/) override {
        Work work;
        {
            const std::scoped_lock guard(lock_);
            work = std::move(posted_.front());
            posted_.pop_front();
        }
        work();
    }

private:
    std::mutex lock_;
    std::deque<Work> posted_;
};

QtMainQueue::QtMainQueue() : receiver_(std::make_unique<Receiver>()) {}
QtMainQueue::~QtMainQueue() = default;

void QtMainQueue::post(Work work) { receiver_->post(std::move(work)); }

Registration QtMainQueue::after(Duration delay, Work work) {
    const QPointer<QTimer> timer = new QTimer(receiver_.get()); // NOLINT(*-owning-memory): its parent's
    timer->setSingleShot(true);
    timer->setTimerType(Qt::PreciseTimer);
    const auto waiting = std::make_shared<Work>(std::move(work));
    QObject::connect(timer, &QTimer::timeout, receiver_.get(), [timer, waiting] {
        timer->deleteLater();
        std::exchange(*waiting, nullptr)();
    });
    timer->start(inMilliseconds(delay));
    return Registration([timer] {
        if (!timer) return;
        timer->stop();
        timer->deleteLater();
    });
}

} // namespace querlin
