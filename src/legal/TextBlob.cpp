#include "legal/TextBlob.h"

#include "foundation/PlainText.h"
#include "foundation/TextCase.h"
#include "foundation/Utf8.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>
#include <span>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace querlin {

namespace {

constexpr auto nowhere = std::string_view::npos;

/// The bytes of German law texts in small letters, the commonest first; all others are rarer.
constexpr std::string_view commonestFirst = " enirtsahdugclbomf.kz,w\xC3\xBCv1p2s3)(\xA4\n"
                                            "54\xB6\x9F-6798j0\xA7\xC2qx;y\xE2\x80:/";

/// How common each byte is: half as common in the second place, a third in the third.
constexpr auto commonness = [] {
    std::array<unsigned, 256> table{};
    table.fill(1);
    for (std::size_t i = commonestFirst.size(); i > 0; --i)
        table.at(static_cast<unsigned char>(commonestFirst[i - 1])) = static_cast<unsigned>(1000 / i);
    // The first byte of a letter or a sign says nothing that the next byte doesn't say better.
    for (const std::size_t lead : {0xC2U, 0xC3U, 0xE2U}) table.at(lead) = 1000;
    return table;
}();

/// The places of a term that tell most about it: where its bytes are rare, and not side by side, for letters
/// that often follow each other tell little more than one of them ("ch", "qu").
class Probes {
public:
    static constexpr std::size_t count = 3;

    explicit Probes(std::string_view term) {
        for (std::size_t chosen = 0; chosen < count; ++chosen) {
            auto least = std::numeric_limits<unsigned>::max();
            // Where a term has too few bytes, the first place is probed again.
            offsets_.at(chosen) = offsets_.front();
            for (std::size_t i = 0; i < term.size(); ++i) {
                const auto known = std::span(offsets_).first(chosen);
                if (std::ranges::count(known, i) > 0) continue;
                const auto neighbours =
                    std::ranges::count_if(known, [i](auto at) { return at + 1 == i || i + 1 == at; });
                const auto said = commonness.at(static_cast<unsigned char>(term[i])) << (2 * neighbours);
                if (said >= least) continue;
                least = said;
                offsets_.at(chosen) = i;
            }
        }
    }

    const std::array<std::size_t, count>& offsets() const { return offsets_; }
    std::size_t furthest() const { return *std::ranges::max_element(offsets_); }

private:
    std::array<std::size_t, count> offsets_{};
};

std::size_t findPortably(std::string_view text, std::string_view term, std::size_t from) {
    if (text.size() < from + term.size()) return nowhere;
    const auto* found =
        static_cast<const char*>(::memmem(text.data() + from, text.size() - from, term.data(), term.size()));
    return found ? static_cast<std::size_t>(found - text.data()) : nowhere;
}

#if defined(__x86_64__)

/// Looks at four blocks at once and, where one of them might hold the term, at its bytes.
class Avx2Finder {
public:
    Avx2Finder(std::string_view text, std::string_view term) : text_(text), term_(term), probes_(term) {}

    [[gnu::target("avx2")]] std::size_t find(std::size_t from) const {
        constexpr std::size_t ahead = 4096; // The processor doesn't fetch beyond a page by itself.
        const auto furthest = probes_.furthest();
        const std::array<Register, Probes::count> wanted = {byte(0), byte(1), byte(2)};
        std::array<Register, blocks> candidates{};
        for (; from + blocks * width + furthest <= text_.size(); from += blocks * width) {
            for (std::size_t line = 0; line < blocks * width; line += cacheLine)
                _mm_prefetch(text_.data() + from + ahead + line, _MM_HINT_T0);
            auto any = _mm256_setzero_si256();
            for (std::size_t i = 0; i < blocks; ++i) {
                candidates[i] = candidatesAt(from + (i * width), wanted);
                any = _mm256_or_si256(any, candidates[i].bytes);
            }
            if (_mm256_testz_si256(any, any) != 0) continue;
            for (std::size_t i = 0; i < blocks; ++i) {
                auto places = static_cast<std::uint32_t>(_mm256_movemask_epi8(candidates[i].bytes));
                for (; places != 0; places &= places - 1) {
                    const auto place =
                        from + (i * width) + static_cast<std::size_t>(std::countr_zero(places));
                    if (text_.substr(place).starts_with(term_)) return place;
                }
            }
        }
        return findPortably(text_, term_, from);
    }

private:
    static constexpr std::size_t width = 32;
    static constexpr std::size_t blocks = 4;
    static constexpr std::size_t cacheLine = 64;

    struct Register {
        __m256i bytes;
    };

    [[gnu::target("avx2"), gnu::always_inline]] Register byte(std::size_t probe) const {
        return {_mm256_set1_epi8(term_[probes_.offsets()[probe]])};
    }
    /// Not 0 where all probes find what they look for.
    [[gnu::target("avx2"), gnu::always_inline]] Register
    candidatesAt(std::size_t from, const std::array<Register, Probes::count>& wanted) const {
        auto all = _mm256_set1_epi8(-1);
        for (std::size_t i = 0; i < Probes::count; ++i) {
            const auto* place = text_.data() + from + probes_.offsets()[i];
            const auto found =
                _mm256_loadu_si256(reinterpret_cast<const __m256i*>(place)); // NOLINT: as it's meant
            all = _mm256_and_si256(all, _mm256_cmpeq_epi8(found, wanted[i].bytes));
        }
        return {all};
    }

    std::string_view text_;
    std::string_view term_;
    Probes probes_;
};

#endif

} // namespace

/// Tells which text a byte belongs to, for bytes that come in their order.
class TextBlob::Cursor {
public:
    Cursor(const std::vector<std::uint32_t>& starts, std::size_t first) : starts_(starts), at_(first) {}

    std::size_t textAt(std::size_t offset) {
        // Mostly it is one of the next: strides that double, and then halves.
        std::size_t stride = 1;
        while (at_ + stride < starts_.size() && starts_[at_ + stride] <= offset) {
            at_ += stride;
            stride *= 2;
        }
        for (; stride > 0; stride /= 2) {
            if (at_ + stride < starts_.size() && starts_[at_ + stride] <= offset) at_ += stride;
        }
        return at_;
    }

private:
    const std::vector<std::uint32_t>& starts_;
    std::size_t at_;
};

bool TextBlob::append(std::string_view text) {
    const auto before = bytes_.size();
    const bool isPlain = lowercasePlainText(text, bytes_.extend(text.size()));
    if (!isPlain) {
        bytes_.shrink(before);
        bytes_.append(lowercase(text));
    }
    *bytes_.extend(1) = '\n';
    starts_.push_back(static_cast<std::uint32_t>(bytes_.size()));
    return isPlain || isValidUtf8(text);
}

void TextBlob::search(std::string_view bytes, Range range, const Visitor& visit,
                      [[maybe_unused]] Registers registers) const {
    if (bytes.empty() || range.first >= range.end) return;
    // What begins in the last text may end after it.
    const std::string_view text =
        std::string_view(bytes_).substr(0, std::min(bytes_.size(), starts_[range.end] + bytes.size() - 1));
#if defined(__x86_64__)
    const Avx2Finder finder(text, bytes);
#endif
    const auto find = [&](std::size_t from) {
#if defined(__x86_64__)
        if (registers == Registers::avx2) return finder.find(from);
#endif
        return findPortably(text, bytes, from);
    };
    Cursor cursor(starts_, range.first);
    for (auto found = find(starts_[range.first]); found != nowhere;) {
        const auto number = cursor.textAt(found);
        if (!visit(number)) return;
        found = find(starts_[number + 1]);
    }
}

} // namespace querlin
