#pragma once

#include "foundation/Words.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <vector>

namespace querlin {

/// How far recognised texts are from what was said: the words that were put in, left out or taken for others,
/// as a share of those that were said. Letters' case and punctuation at words' ends don't count.
class WordErrorRate {
public:
    void add(std::string_view said, std::string_view recognised) {
        const Words expected(said);
        const Words found(recognised);
        // One row of the table of edit distances, from row to row.
        std::vector<std::size_t> distances(found.size() + 1);
        std::iota(distances.begin(), distances.end(), std::size_t(0));
        for (std::size_t row = 0; row < expected.size(); ++row) {
            std::size_t diagonal = std::exchange(distances[0], row + 1);
            for (std::size_t column = 0; column < found.size(); ++column) {
                const bool isSame = expected.compared(row) == found.compared(column);
                const auto best = std::min({distances[column + 1] + 1, distances[column] + 1, diagonal + (isSame ? 0 : 1)});
                diagonal = std::exchange(distances[column + 1], best);
            }
        }
        errors_ += distances.back();
        words_ += expected.size();
    }

    std::size_t words() const { return words_; }
    double percent() const { return words_ == 0 ? 0 : 100 * static_cast<double>(errors_) / static_cast<double>(words_); }

private:
    std::size_t errors_ = 0;
    std::size_t words_ = 0;
};

} // namespace querlin
