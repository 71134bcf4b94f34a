#pragma once

#include "foundation/BigText.h"
#include "foundation/Processor.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace querlin {

/// Many texts in small letters, one after the other in one stretch of memory, to be searched by bytes.
///
/// Each text ends with a line feed. Once filled it never changes; then any thread may search it.
class TextBlob {
public:
    /// Room for so many bytes, ready to be filled.
    explicit TextBlob(std::size_t bytes) {
        bytes_.reserve(bytes);
        bytes_.makeReady();
    }

    /// False if it isn't well-formed UTF-8; then it is there with U+FFFD for what can't be read.
    bool append(std::string_view text);
    std::size_t count() const { return starts_.size() - 1; }

    /// The numbers of texts, from the first to one past the last.
    struct Range {
        std::size_t first = 0;
        std::size_t end = 0;
    };
    /// Takes the number of a text; false ends the search.
    using Visitor = std::function<bool(std::size_t)>;

    /// Calls with each text of the range that holds the bytes, in their order and each once. No bytes are
    /// held by none.
    void search(std::string_view bytes, Range range, const Visitor& visit,
                Registers registers = widestRegisters()) const;

private:
    class Cursor;

    BigText bytes_;
    /// Where each text begins, and the length of all.
    std::vector<std::uint32_t> starts_{0};
};

} // namespace querlin
