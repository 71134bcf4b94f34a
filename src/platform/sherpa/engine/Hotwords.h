#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// Words to be favoured, in the form of one model: one that it can't write would cost it the whole list.
class Hotwords {
public:
    Hotwords() = default;
    /// From the model's tokens.
    explicit Hotwords(const std::filesystem::path& tokens);

    /// Those that the model can write, in its letters' case, separated by "/": "Özdemir", "§ 5" -> "özdemir".
    std::string listOf(const std::vector<std::string>& words) const;

private:
    bool canWrite(std::string_view word) const;

    std::set<char32_t> letters_;
    bool hasCapitals_ = false;
    bool hasSmallLetters_ = false;
};

} // namespace querlin
