#include "foundation/TextCase.h"

#include "foundation/Utf8.h"

#include <cstdint>

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

enum class Case : std::uint8_t { Upper, Lower };

/// Maps a stretch of ASCII.
void mapAscii(char* bytes, std::size_t count, Case to) {
    const char first = to == Case::Lower ? 'A' : 'a';
    for (std::size_t i = 0; i < count; ++i) { // Without a branch, so that it runs over many bytes at once.
        const bool isMapped = static_cast<unsigned char>(bytes[i] - first) < 26;
        bytes[i] = static_cast<char>(bytes[i] ^ (isMapped ? 0x20 : 0));
    }
}

/// Maps a scalar of U+0080 to U+00FF, given by its two bytes. False if its counterpart lies elsewhere.
bool mapLatin1(unsigned char lead, char& trailByte, Case to) {
    const auto trail = static_cast<unsigned char>(trailByte);
    const bool toUpper = to == Case::Upper;
    if (lead == 0xC2) return !toUpper || trail != 0xB5; // The micro sign has a Greek capital.
    // U+00C0 to U+00DE are the capitals of U+00E0 to U+00FE, apart from the two signs among them; the
    // capitals of ß and ÿ lie elsewhere.
    if (trail == 0x9F || trail == 0xBF) return !toUpper;
    const bool isSign = trail == 0x97 || trail == 0xB7;
    const bool isSmall = trail >= 0xA0;
    if (!isSign && isSmall == toUpper) trailByte = static_cast<char>(trail ^ 0x20U);
    return true;
}

/// Maps ASCII and Latin-1 letters in place of ICU. False where the text has anything that these don't
/// cover: then nothing of `result` counts.
bool mapLatin(std::string_view text, Case to, std::string& result) {
    result.assign(text);
    for (std::size_t at = 0;; at += 2) {
        const auto ascii = asciiPrefix(text.substr(at));
        mapAscii(result.data() + at, ascii, to);
        at += ascii;
        if (at == text.size()) return true;
        const auto lead = static_cast<unsigned char>(text[at]);
        const bool isLatin1 = (lead == 0xC2 || lead == 0xC3) && at + 1 < text.size() &&
                              (static_cast<unsigned char>(text[at + 1]) & 0xC0U) == 0x80;
        if (!isLatin1 || !mapLatin1(lead, result[at + 1], to)) return false;
    }
}

const icu::Normalizer2* nfcNormalizer() {
    UErrorCode status = U_ZERO_ERROR;
    static const auto* normalizer = icu::Normalizer2::getNFCInstance(status);
    return normalizer;
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
    if (latinPrefix(text) == text.size()) return true; // Nothing there composes.
    if (!isValidUtf8(text)) return false;
    UErrorCode status = U_ZERO_ERROR;
    const bool isNormalized = nfcNormalizer()->isNormalizedUTF8(piece(text), status) != 0;
    return isNormalized && U_SUCCESS(status) != 0;
}

std::string nfc(std::string_view text) {
    if (latinPrefix(text) == text.size()) return std::string(text);
    return converted(validUtf8(text), [](icu::StringPiece source, icu::ByteSink& sink, UErrorCode& status) {
        nfcNormalizer()->normalizeUTF8(0, source, sink, nullptr, status);
    });
}

bool canonicallyEqual(std::string_view a, std::string_view b) { return a == b || nfc(a) == nfc(b); }

bool equalIgnoringCase(std::string_view a, std::string_view b) { return a == b || folded(a) == folded(b); }

bool containsIgnoringCase(std::string_view haystack, std::string_view needle) {
    return needle.empty() || folded(haystack).contains(folded(needle));
}

} // namespace querlin
