#pragma once

#include "foundation/MainQueue.h"

#include <memory>
#include <utility>

namespace querlin {

/// A member of objects whose callbacks are kept by others: the functions that `onMain` returns do nothing
/// once the object is destroyed. Declare it last, so that it is destroyed first.
class Lifetime {
public:
    /// Wraps `call` for callers on any thread: each call is posted to the main thread and made there.
    template<class Call>
    auto onMain(MainQueue& queue, Call call) const {
        return [&queue, weak = std::weak_ptr(token_), call = std::move(call)](auto... arguments) {
            queue.post([weak, call, ... arguments = std::move(arguments)]() mutable {
                if (!weak.expired()) call(std::move(arguments)...);
            });
        };
    }

private:
    struct Token {};
    std::shared_ptr<Token> token_ = std::make_shared<Token>();
};

} // namespace querlin
