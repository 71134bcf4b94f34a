#include "platform/helper/Helper.h"

#include <utility>

namespace querlin {

Helper::Helper(HelperSetup setup, std::unique_ptr<HelperClient> client) {
    auto loop = std::make_unique<HelperLoop>(std::move(setup), std::move(client), orders_, process_);
    loop_ = loop.get();
    thread_ = std::jthread([loop = std::move(loop)] { loop->run(); });
}

Helper::~Helper() {
    orders_->send([loop = loop_] {
        loop->quit();
        return false;
    });
    if (thread_.get_id() == std::this_thread::get_id()) thread_.detach();
}

} // namespace querlin
