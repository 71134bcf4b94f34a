#pragma once

#include <functional>
#include <utility>

namespace querlin {

/// The owned end of a subscription, a scheduled call or an observer. Destroying it withdraws the callback,
/// which is then never called again.
class [[nodiscard]] Registration {
public:
    Registration() = default;
    explicit Registration(std::move_only_function<void()> withdraw) : withdraw_(std::move(withdraw)) {}
    Registration(Registration&& other) noexcept : withdraw_(std::exchange(other.withdraw_, nullptr)) {}
    Registration& operator=(Registration&& other) noexcept {
        if (this != &other) {
            // Moved first: withdrawing may run code that looks at this registration.
            auto former = std::exchange(withdraw_, std::exchange(other.withdraw_, nullptr));
            if (former) former();
        }
        return *this;
    }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
    ~Registration() { reset(); }

    /// Withdraws now. Harmless on an empty registration.
    void reset() {
        if (auto withdraw = std::exchange(withdraw_, nullptr)) withdraw();
    }

    /// Whether there is something to withdraw; true also after a scheduled call has run.
    explicit operator bool() const { return static_cast<bool>(withdraw_); }

private:
    std::move_only_function<void()> withdraw_;
};

} // namespace querlin
