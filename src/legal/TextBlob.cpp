#include "legal/TextBlob.h"

#include "foundation/TextCase.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace querlin {

namespace {

constexpr auto nowhere = std::string_view::npos;

/// The bytes of German law texts in small letters, the commonest first; all others are rarer.
constexpr std::string_view commonestFirst = " enirtsahdugclbomf.kz,w\xC3\xBCv1p2s3)(\xA4\n"
                                            "54\xB6\x9F-6798j0\xA7\xC2qx;y\xE2\x80:/";

constexpr auto commonness = [] {
    std::array<std::uint8_t, 256> table{};
    for (std::size_t i = commonestFirst.size(); i > 0; --i)
        table.at(static_cast<unsigned char>(commonestFirst[i - 1])) =
            static_cast<std::uint8_t>(commonestFirst.size() - i + 1);
    return table;
}();

/// A few bytes of a term by which places that can't hold it are told at a glance: the rarest ones.
class Probes {
public:
    static constexpr std::size_t count = 3;

    explicit Probes(std::string_view term) {
        const auto isRarer = [term](std::size_t a, std::size_t b) {
            return commonness.at(static_cast<unsigned char>(term[a])) <
                   commonness.at(static_cast<unsigned char>(term[b]));
        };
        for (std::size_t chosen = 0; chosen < count; ++chosen) {
            std::size_t best = nowhere;
            for (std::size_t i = 0; i < term.size(); ++i) {
                const bool isTaken =
                    std::find(offsets.begin(), offsets.begin() + chosen, i) != offsets.begin() + chosen;
                if (!isTaken && (best == nowhere || isRarer(i, best))) best = i;
            }
            // A term shorter than that is probed twice at one place.
            offsets.at(chosen) = best == nowhere ? offsets.front() : best;
        }
    }

    std::array<std::size_t, count> offsets{};
    std::size_t furthest() const { return *std::ranges::max_element(offsets); }
};

std::size_t findPortably(std::string_view text, std::string_view term, std::size_t from) {
    if (text.size() < from + term.size()) return nowhere;
    const auto* found =
        static_cast<const char*>(::memmem(text.data() + from, text.size() - from, term.data(), term.size()));
    return found ? static_cast<std::size_t>(found - text.data()) : nowhere;
}

#if defined(__x86_64__)

[[gnu::target("avx2")]] std::size_t findWithAvx2(std::string_view text, std::string_view term,
                                                 const Probes& probes, std::size_t from) {
    constexpr std::size_t width = 32;
    const auto furthest = probes.furthest();
    const auto [first, second, third] = probes.offsets;
    const auto firstByte = _mm256_set1_epi8(term[first]);
    const auto secondByte = _mm256_set1_epi8(term[second]);
    const auto thirdByte = _mm256_set1_epi8(term[third]);
    const auto* bytes = text.data();
    const auto at = [bytes](std::size_t offset) __attribute__((target("avx2"))) {
        return _mm256_loadu_si256(
            reinterpret_cast<const __m256i*>(bytes + offset)); // NOLINT: as it is loaded
    };
    for (; from + width + furthest <= text.size(); from += width) {
        const auto both = _mm256_and_si256(_mm256_cmpeq_epi8(at(from + first), firstByte),
                                           _mm256_cmpeq_epi8(at(from + second), secondByte));
        const auto all = _mm256_and_si256(both, _mm256_cmpeq_epi8(at(from + third), thirdByte));
        auto candidates = static_cast<std::uint32_t>(_mm256_movemask_epi8(all));
        for (; candidates != 0; candidates &= candidates - 1) {
            const auto place = from + static_cast<std::size_t>(std::countr_zero(candidates));
            if (text.size() - place >= term.size() &&
                std::memcmp(bytes + place, term.data(), term.size()) == 0)
                return place;
        }
    }
    return findPortably(text, term, from);
}

#endif

} // namespace

Scanning bestScanning() {
#if defined(__x86_64__)
    static const bool hasAvx2 = __builtin_cpu_supports("avx2") != 0;
    if (hasAvx2) return Scanning::avx2;
#endif
    return Scanning::portable;
}

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

TextBlob::TextBlob(std::size_t texts, std::size_t bytes) {
    starts_.reserve(texts + 1);
    bytes_.reserve(bytes);
}

void TextBlob::append(std::string_view text) {
    appendLowercase(text, bytes_);
    bytes_ += '\n';
    starts_.push_back(static_cast<std::uint32_t>(bytes_.size()));
}

void TextBlob::search(std::string_view bytes, Range range, const Visitor& visit, Scanning scanning) const {
    if (bytes.empty() || range.first >= range.end) return;
    // What begins in the last text may end behind it.
    const std::string_view text =
        std::string_view(bytes_).substr(0, std::min(bytes_.size(), starts_[range.end] + bytes.size() - 1));
    const Probes probes(bytes);
    const auto find = [&](std::size_t from) {
#if defined(__x86_64__)
        if (scanning == Scanning::avx2) return findWithAvx2(text, bytes, probes, from);
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
