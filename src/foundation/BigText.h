#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

namespace querlin {

/// A text of megabytes. Its memory comes straight from the operating system, in large pages where available:
/// unlike a string's it isn't cleared twice, and reading through it costs fewer page faults.
///
/// Some bytes past the end may be read, so that loops over many bytes at once need no special case for the
/// end; they are zero unless the text has been shortened.
class BigText {
public:
    static constexpr std::size_t roomBehind = 64;

    BigText() = default;
    /// Zero bytes.
    explicit BigText(std::size_t size);
    explicit BigText(std::string_view text);

    char* data() { return memory_.get(); }
    std::size_t size() const { return size_; }
    operator std::string_view() const { return {memory_.get(), size_}; }

    /// Capacity in bytes: up to it, appending moves nothing.
    void reserve(std::size_t capacity);
    /// Makes all reserved pages ready now instead of at their first use.
    void makeReady();
    /// Appends bytes of any value and returns their address.
    char* extend(std::size_t bytes);
    void append(std::string_view text);
    /// Removes bytes at the end.
    void shrink(std::size_t size) { size_ = size; }

private:
    struct Unmap {
        std::size_t length;
        Unmap() : length(0) {}
        explicit Unmap(std::size_t bytes) : length(bytes) {}
        void operator()(char* memory) const;
    };
    using Memory = std::unique_ptr<char, Unmap>;
    static Memory map(std::size_t capacity);

    Memory memory_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

} // namespace querlin
