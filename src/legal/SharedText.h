#pragma once

#include <concepts>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace querlin {

/// A text that its copies share: it costs next to nothing to copy, never changes, and lives as long as the
/// last of them. Any thread.
class SharedText {
public:
    SharedText() = default;
    SharedText(std::string text) {
        if (text.empty()) return;
        auto owned = std::make_shared<const std::string>(std::move(text));
        text_ = *owned;
        owner_ = std::move(owned);
    }
    SharedText(std::string_view text) : SharedText(std::string(text)) {}
    SharedText(const char* text) : SharedText(std::string(text)) {}
    /// A part of something that many texts have in common, a whole document.
    SharedText(std::shared_ptr<const void> owner, std::string_view text) :
        owner_(std::move(owner)), text_(text) {}

    operator std::string_view() const { return text_; }
    std::string_view view() const { return text_; }

    template<std::convertible_to<std::string_view> Text>
    friend bool operator==(const SharedText& a, const Text& b) {
        return a.text_ == std::string_view(b);
    }

private:
    std::shared_ptr<const void> owner_;
    std::string_view text_;
};

} // namespace querlin
