#pragma once

#include "foundation/Time.h"

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <vector>

namespace querlin {

/// The keys that we press ourselves, so that the server's report of them isn't taken for the user's: a text
/// that is pasted while the next dictation begins must not give that one up. Releases are never left out, for
/// a missed one would leave a hold without an end. Any thread.
class OwnKeys {
public:
    /// To be called before the key is pressed.
    void willPress(std::uint8_t keyCode) {
        const std::scoped_lock guard(mutex_);
        presses_.push_back({keyCode, std::chrono::steady_clock::now() + longestWay});
    }
    /// Whether a press that is reported now is ours; each is so once.
    bool takePress(std::uint8_t keyCode) {
        const std::scoped_lock guard(mutex_);
        const auto now = std::chrono::steady_clock::now();
        std::erase_if(presses_, [now](const Press& press) { return press.until < now; });
        const auto found = std::ranges::find(presses_, keyCode, &Press::keyCode);
        if (found == presses_.end()) return false;
        presses_.erase(found);
        return true;
    }

private:
    struct Press {
        std::uint8_t keyCode;
        Instant until;
    };
    static constexpr Duration longestWay = std::chrono::milliseconds(500);

    std::mutex mutex_;
    std::vector<Press> presses_;
};

} // namespace querlin
