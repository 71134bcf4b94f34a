#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace querlin::bench {

/// What is wanted of a ratio.
struct Bar {
    enum class Kind : std::uint8_t { information, atLeast, atMost };
    Kind kind = Kind::information;
    double ratio = 0;

    static Bar atLeast(double ratio) { return {Kind::atLeast, ratio}; }
    static Bar atMost(double ratio) { return {Kind::atMost, ratio}; }
    bool isReachedBy(double measured) const;
};

/// The table of all cases.
class Report {
public:
    /// A heading for the rows that follow.
    void section(std::string_view title);
    /// Ours and the peer's in words, and their ratio: peer to ours for "at least so many times as fast", and
    /// for what has no bar; ours to peer for "at most so many times".
    void row(std::string_view name, std::string_view ours, std::string_view peer, double ratio, Bar bar);
    /// The same in seconds; the ratio follows from them.
    void times(std::string_view name, double ours, double peer, Bar bar);
    /// A bar that several rows reach together.
    void verdict(std::string_view name, bool isReached);
    /// Whatever else there is to say.
    void note(std::string_view text);
    /// Ours and a peer don't agree; makes the program fail.
    void disagreement(std::string_view text);

    bool hasDisagreement() const { return disagreements_ > 0; }

private:
    std::size_t disagreements_ = 0;
};

/// "12.3 ms", "456 µs"
std::string inWords(double seconds);

} // namespace querlin::bench
