#include "platform/atspi/Patience.h"

#include <algorithm>

namespace querlin {

namespace {

constexpr Duration accounted = std::chrono::seconds(1);
constexpr Duration longestWithin = std::chrono::milliseconds(200);
constexpr Duration quick = std::chrono::milliseconds(10);

} // namespace

Duration Patience::limit(const std::string& name, Duration longest, Instant now) {
    std::erase_if(accounts_, [now](const auto& entry) { return entry.second.until <= now; });
    const auto found = accounts_.find(name);
    const auto limit = found == accounts_.end() ? longest : std::min(longest, found->second.left);
    return std::max(limit, Duration::zero());
}

void Patience::answered(const std::string& name, Duration after, Instant now) {
    if (after < quick) return;
    const auto account = accounts_.try_emplace(name, Account{now + accounted, longestWithin}).first;
    account->second.left -= after;
}

void Patience::gaveUp(const std::string& name, Instant now) {
    accounts_[name] = Account{now + accounted, Duration::zero()};
}

} // namespace querlin
