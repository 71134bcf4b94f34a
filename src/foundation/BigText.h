#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

namespace querlin {

/// A text of megabytes. Its memory comes straight from the operating system, in large pages where it has
/// them: unlike that of a string it isn't cleared twice, and looking through it costs fewer page faults.
///
/// Behind the text there is room that may be read, so that whoever takes many bytes at once needn't look for
/// its end; of a text that has not been made shorter it is zero.
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

    /// So much can be added before it moves.
    void reserve(std::size_t capacity);
    /// Has the system make all that is reserved ready now, not page by page when it is first written.
    void makeReady();
    /// Adds so many bytes, of any value, and gives their place.
    char* extend(std::size_t bytes);
    void append(std::string_view text);
    /// Takes bytes away at the end.
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
