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

enum class Case : std::uint8_t { Upper, Lower, Fold };

/// Maps a stretch of ASCII.
void mapAscii(char* bytes, std::size_t count, Case to) {
    const char first = to == Case::Upper ? 'a' : 'A';
    for (std::size_t i = 0; i < count; ++i) { // Without a branch, so that it runs over many bytes at once.
        const bool isMapped = static_cast<unsigned char>(bytes[i] - first) < 26;
        bytes[i] = static_cast<char>(bytes[i] ^ (isMapped ? 0x20 : 0));
    }
}

/// Maps one scalar of U+0080 to U+00FF. What it becomes takes two bytes as well.
void mapLatin1(char* bytes, Case to) {
    const std::string_view scalar(bytes, 2);
    const auto put = [bytes](std::string_view mapped) { mapped.copy(bytes, 2); };
    if (scalar == "ß") {
        if (to != Case::Lower) put(to == Case::Upper ? "SS" : "ss");
    } else if (scalar == "\u00B5") { // The micro sign is not the Greek letter.
        if (to != Case::Lower) put(to == Case::Upper ? "\u039C" : "\u03BC");
    } else if (scalar == "ÿ") {
        if (to == Case::Upper) put("Ÿ");
    } else if (scalar.front() == '\xC3' && scalar != "×" && scalar != "÷") {
        const auto second = static_cast<unsigned char>(bytes[1]);
        const bool isLower = second >= 0xA0;
        if (isLower == (to == Case::Upper)) bytes[1] = static_cast<char>(second ^ 0x20U);
    }
}

/// Maps in place of ICU what German text is made of: ASCII, U+0080 to U+00FF, punctuation. False where
/// the text has anything else: then nothing of `result` counts.
bool mapLatin(std::string_view text, Case to, std::string& result) {
    if (latinPrefix(text) != text.size()) return false;
    result.assign(text);
    for (std::size_t at = 0;;) {
        const auto ascii = asciiPrefix(text.substr(at));
        mapAscii(result.data() + at, ascii, to);
        at += ascii;
        if (at == text.size()) return true;
        const auto lead = static_cast<unsigned char>(text[at]);
        if (lead > 0xC3 && lead < 0xE0) return false; // Letters from U+0100 on have rules of their own.
        const bool isPunctuation = lead >= 0xE0;
        if (!isPunctuation) mapLatin1(result.data() + at, to);
        at += isPunctuation ? 3 : 2;
    }
}

const icu::Normalizer2* nfcNormalizer() {
    UErrorCode status = U_ZERO_ERROR;
    static const auto* normalizer = icu::Normalizer2::getNFCInstance(status);
    return normalizer;
}

/// One form for all texts that differ in case or normalisation alone.
std::string folded(std::string_view text) {
    if (std::string latin; mapLatin(text, Case::Fold, latin)) return latin;
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
