#pragma once

#include "foundation/MainQueue.h"

#include <memory>

namespace querlin {

/// The main queue on the toolkit's event loop. Made on the main thread after the application object, and
/// gone before it; what waits then is dropped.
class QtMainQueue final : public MainQueue {
public:
    QtMainQueue();
    ~QtMainQueue() override;
    QtMainQueue(const QtMainQueue&) = delete;
    QtMainQueue& operator=(const QtMainQueue&) = delete;

    void post(Work work) override;
    Registration after(Duration delay, Work work) override;

private:
    class Receiver;
    std::unique_ptr<Receiver> receiver_;
};

} // namespace querlin
