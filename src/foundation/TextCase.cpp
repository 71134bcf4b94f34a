#include "foundation/TextCase.h"

#include "foundation/Utf8.h"

#include <algorithm>

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/normalizer2.h>
#include <unicode/stringpiece.h>

namespace querlin {

namespace {

icu::StringPiece piece(std::string_view text) {
    return {text.data(), static_cast<std::int32_t>(text.size())};
}

/// Runs one of ICU's UTF-8 conversions on well-formed text: `convert(piece, sink, status)`.
template<class Convert>
std::string converted(const std::string& text, Convert convert) {
    std::string result;
    result.reserve(text.size());
    icu::StringByteSink<std::string> sink(&result);
    UErrorCode status = U_ZERO_ERROR;
    convert(piece(text), sink, status);
    return U_SUCCESS(status) ? result : text;
}

enum class Case { Upper, Lower };

/// Maps ASCII and the letters of U+00C0 to U+00FF in place of ICU. False where the text has anything
/// that these don't cover: then nothing of `result` counts.
bool mapLatin(std::string_view text, Case to, std::string& result) {
    constexpr auto lead = static_cast<char>(0xC3);
    result.assign(text);
    for (std::size_t i = 0; i < result.size(); ++i) {
        char& byte = result[i];
        if (static_cast<unsigned char>(byte) < 0x80) {
            if (to == Case::Lower && byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte + 32);
            if (to == Case::Upper && byte >= 'a' && byte <= 'z') byte = static_cast<char>(byte - 32);
            continue;
        }
        if (byte != lead || i + 1 == result.size()) return false;
        // U+00C0 to U+00DE are the capitals of U+00E0 to U+00FE, apart from the two signs among them.
        const auto trail = static_cast<unsigned char>(result[i + 1]);
        const bool isSign = trail == 0x97 || trail == 0xB7;
        if (trail < 0x80 || trail > 0xBF || (to == Case::Upper && (trail == 0x9F || trail == 0xBF)))
            return false;
        if (to == Case::Lower && trail <= 0x9E && !isSign) result[i + 1] = static_cast<char>(trail + 0x20);
        if (to == Case::Upper && trail >= 0xA0 && !isSign) result[i + 1] = static_cast<char>(trail - 0x20);
        ++i;
    }
    return true;
}

const icu::Normalizer2* nfcNormalizer() {
    UErrorCode status = U_ZERO_ERROR;
    static const auto* normalizer = icu::Normalizer2::getNFCInstance(status);
    return normalizer;
}

/// Whether nothing in the text can compose or be reordered: all of it lies below U+0300.
bool isBelowCombiningMarks(std::string_view text) {
    return std::ranges::none_of(text, [](char byte) { return static_cast<unsigned char>(byte) >= 0xCC; });
}

/// One form for all texts that differ in case alone.
std::string folded(std::string_view text) {
    // Folding may leave something to compose.
    return nfc(converted(nfc(text), [](icu::StringPiece source, icu::ByteSink& sink, UErrorCode& status) {
        icu::CaseMap::utf8Fold(0, source, sink, nullptr, status);
    }));
}

} // namespace

std::string uppercase(std::string_view text) {
    std::string result;
    if (mapLatin(text, Case::Upper, result)) return result;
    return converted(validUtf8(text), [](icu::StringPiece source, icu::ByteSink& sink, UErrorCode& status) {
        icu::CaseMap::utf8ToUpper("", 0, source, sink, nullptr, status);
    });
}

std::string lowercase(std::string_view text) {
    std::string result;
    if (mapLatin(text, Case::Lower, result)) return result;
    return converted(validUtf8(text), [](icu::StringPiece source, icu::ByteSink& sink, UErrorCode& status) {
        icu::CaseMap::utf8ToLower("", 0, source, sink, nullptr, status);
    });
}

bool isNfc(std::string_view text) {
    if (!isValidUtf8(text)) return false;
    if (isBelowCombiningMarks(text)) return true;
    UErrorCode status = U_ZERO_ERROR;
    return nfcNormalizer()->isNormalizedUTF8(piece(text), status) != 0 && U_SUCCESS(status);
}

std::string nfc(std::string_view text) {
    auto valid = validUtf8(text);
    if (isBelowCombiningMarks(valid)) return valid;
    return converted(valid, [](icu::StringPiece source, icu::ByteSink& sink, UErrorCode& status) {
        nfcNormalizer()->normalizeUTF8(0, source, sink, nullptr, status);
    });
}

bool canonicallyEqual(std::string_view a, std::string_view b) {
    return a == b || (!(isBelowCombiningMarks(a) && isBelowCombiningMarks(b)) && nfc(a) == nfc(b));
}

bool equalIgnoringCase(std::string_view a, std::string_view b) { return a == b || folded(a) == folded(b); }

bool containsIgnoringCase(std::string_view haystack, std::string_view needle) {
    return needle.empty() || folded(haystack).contains(folded(needle));
}

} // namespace querlin
