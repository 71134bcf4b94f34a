#include "foundation/Requirement.h"

#include <algorithm>

namespace querlin {

bool Requirement::isMetBy(std::string_view text) const {
    if (literals_.empty() && !isPair_) return true;
    thread_local TextProfile profile;
    profile.read(text);
    return profile.meets(*this);
}

void TextProfile::read(std::string_view text) {
    fold(text);
    followers_ = {};
    if (folded_.empty()) return;
    auto before = static_cast<unsigned char>(folded_.front());
    for (const char byte : std::string_view(folded_).substr(1)) {
        const auto next = static_cast<unsigned char>(byte);
        followers_[before].add(next);
        before = next;
    }
}

void TextProfile::fold(std::string_view text) {
    folded_.resize(text.size());
    auto* out = folded_.data();
    for (std::size_t at = 0; at < text.size();) {
        const auto byte = static_cast<unsigned char>(text[at]);
        const auto rest = text.substr(at);
        if (byte < 0x80) {
            const bool isCapital = static_cast<unsigned char>(byte - 'A') < 26;
            *out++ = static_cast<char>(byte | (isCapital ? 0x20 : 0));
            ++at;
        } else if (byte == 0xC3 && rest.size() > 1) {
            const auto second = static_cast<unsigned char>(rest[1]);
            const bool isCapital = second >= 0x80 && second <= 0x9E; // × becomes ÷, which nothing looks for.
            *out++ = static_cast<char>(byte);
            *out++ = static_cast<char>(isCapital ? second + 0x20 : second);
            at += 2;
        } else if (rest.starts_with("\u017F")) {
            *out++ = 's';
            at += 2;
        } else if (rest.starts_with("\u212A")) {
            *out++ = 'k';
            at += 3;
        } else if (rest.starts_with("ẞ")) {
            out = std::ranges::copy(std::string_view("ß"), out).out;
            at += 3;
        } else {
            *out++ = static_cast<char>(byte);
            ++at;
        }
    }
    folded_.resize(static_cast<std::size_t>(out - folded_.data()));
}

bool TextProfile::holds(std::string_view literal) const {
    for (std::size_t i = 1; i < literal.size(); ++i) {
        const auto& followers = followers_[static_cast<unsigned char>(literal[i - 1])];
        if (!followers.contains(static_cast<unsigned char>(literal[i]))) return false;
    }
    return folded_.contains(literal);
}

bool TextProfile::meets(const Requirement& requirement) const {
    if (requirement.isPair_) {
        return requirement.first_.anyOf(
            [&](unsigned char byte) { return followers_[byte].meets(requirement.second_); });
    }
    auto literals = requirement.literals_;
    if (literals.empty()) return true;
    while (true) {
        const auto end = std::min(literals.find('|'), literals.size());
        if (holds(literals.substr(0, end))) return true;
        if (end == literals.size()) return false;
        literals.remove_prefix(end + 1);
    }
}

} // namespace querlin
