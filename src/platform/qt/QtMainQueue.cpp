#include "platform/qt/QtMainQueue.h"

#include <algorithm>
#include <limits>

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QTimer>

namespace querlin {

namespace {

struct WorkEvent final : QEvent {
    explicit WorkEvent(Work posted) : QEvent(QEvent::User), work(std::move(posted)) {}
    Work work;
};

int inMilliseconds(Duration delay) {
    const auto count = std::chrono::ceil<std::chrono::milliseconds>(delay).count();
    return static_cast<int>(std::clamp<std::int64_t>(count, 0, std::numeric_limits<int>::max()));
}

} // namespace

class QtMainQueue::Receiver final : public QObject {
protected:
    void customEvent(QEvent* event) override {
        std::exchange(dynamic_cast<WorkEvent&>(*event).work, nullptr)();
    }
};

QtMainQueue::QtMainQueue() : receiver_(std::make_unique<Receiver>()) {}
QtMainQueue::~QtMainQueue() = default;

void QtMainQueue::post(Work work) {
    auto event = std::make_unique<WorkEvent>(std::move(work));
    QCoreApplication::postEvent(receiver_.get(), event.release()); // The loop deletes it.
}

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
