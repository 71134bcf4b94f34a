#include "foundation/TextCase.h"

#include "foundation/PlainText.h"
#include "foundation/Utf8.h"

#include <cstdint>
#include <vector>

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

enum class Case : std::uint8_t { Upper, Fold };

/// Maps one scalar of U+0080 to U+00FF that `lowercaseLatin1` doesn't handle. The result has two bytes as
/// well.
void mapLatin1(char* bytes, Case to) {
    const std::string_view scalar(bytes, 2);
    const auto put = [bytes](std::string_view mapped) { mapped.copy(bytes, 2); };
    if (scalar == "ß") {
        put(to == Case::Upper ? "SS" : "ss");
    } else if (scalar == "\u00B5") { // The micro sign is not the Greek letter.
        put(to == Case::Upper ? "\u039C" : "\u03BC");
    } else if (scalar == "ÿ") {
        if (to == Case::Upper) put("Ÿ");
    } else if (to == Case::Upper && scalar.front() == '\xC3' && scalar != "÷") {
        const auto second = static_cast<unsigned char>(bytes[1]);
        if (second >= 0xA0) bytes[1] = static_cast<char>(second ^ 0x20U);
    }
}

/// Whether a text consists of ASCII, U+0080 to U+00FF and punctuation, as German text does. Letters from
/// U+0100 on have case rules of their own.
bool isLatin1WithPunctuation(std::string_view text) {
    if (isLatin1(text)) return true;
    if (latinPrefix(text) != text.size()) return false;
    bool hasOther = false;
    for (const char byte : text) {
        const auto value = static_cast<unsigned char>(byte);
        hasOther |= value > 0xC3 && value < 0xE0;
    }
    return !hasOther;
}

/// Maps such a text without ICU; false for any other, `result` is unspecified then.
bool mapLatin(std::string_view text, Case to, std::string& result) {
    if (!isLatin1WithPunctuation(text)) return false;
    result.resize(text.size());
    if (to == Case::Upper) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            const bool isSmall = static_cast<unsigned char>(text[i] - 'a') < 26;
            result[i] = static_cast<char>(text[i] - (isSmall ? 0x20 : 0));
        }
    } else {
        lowercaseLatin1(text, result.data());
    }
    for (auto at = asciiPrefix(text); at < text.size(); at += asciiPrefix(text.substr(at))) {
        const bool isPunctuation = static_cast<unsigned char>(text[at]) >= 0xE0;
        if (!isPunctuation) mapLatin1(result.data() + at, to);
        at += isPunctuation ? 3 : 2;
    }
    return true;
}

const icu::Normalizer2* nfcNormalizer() {
    UErrorCode status = U_ZERO_ERROR;
    static const auto* normalizer = icu::Normalizer2::getNFCInstance(status);
    return normalizer;
}

/// The common form of all texts that differ in case or normalisation only.
std::string folded(std::string_view text) {
    if (std::string latin; mapLatin(text, Case::Fold, latin)) return latin;
    // Folding may produce sequences that compose.
    return nfc(converted(nfc(text), [](icu::StringPiece source, icu::ByteSink& sink, UErrorCode& status) {
        icu::CaseMap::utf8Fold(0, source, sink, nullptr, status);
    }));
}

} // namespace

void lowercaseLatin1(std::string_view text, char* lower) {
    // No branches and no reads of the output, so that the compiler can vectorise it.
    const auto mapped = [](unsigned char byte, unsigned char lead) {
        const bool isCapital = static_cast<unsigned char>(byte - 'A') < 26;
        const bool isUmlaut = lead == 0xC3 && static_cast<unsigned char>(byte - 0x80) < 0x1F && byte != 0x97;
        return static_cast<char>(byte + (isCapital || isUmlaut ? 0x20 : 0));
    };
    if (!text.empty()) lower[0] = mapped(static_cast<unsigned char>(text[0]), 0);
    for (std::size_t i = 1; i < text.size(); ++i)
        lower[i] = mapped(static_cast<unsigned char>(text[i]), static_cast<unsigned char>(text[i - 1]));
}

std::string uppercase(std::string_view text) {
    std::string result;
    if (mapLatin(text, Case::Upper, result)) return result;
    return converted(validUtf8(text), [](icu::StringPiece source, icu::ByteSink& sink, UErrorCode& status) {
        icu::CaseMap::utf8ToUpper("", 0, source, sink, nullptr, status);
    });
}

std::string lowercase(std::string_view text) {
    std::string result;
    result.resize_and_overwrite(text.size(), [&](char* lower, std::size_t /*room*/) {
        return lowercasePlainText(text, lower) ? text.size() : 0;
    });
    if (result.size() == text.size()) return result;
    return converted(validUtf8(text), [](icu::StringPiece source, icu::ByteSink& sink, UErrorCode& status) {
        icu::CaseMap::utf8ToLower("", 0, source, sink, nullptr, status);
    });
}

bool isNfc(std::string_view text) {
    if (isLatin1(text) || latinPrefix(text) == text.size()) return true; // Nothing there composes.
    if (!isValidUtf8(text)) return false;
    UErrorCode status = U_ZERO_ERROR;
    const bool isNormalized = nfcNormalizer()->isNormalizedUTF8(piece(text), status) != 0;
    return isNormalized && U_SUCCESS(status) != 0;
}

std::string nfc(std::string_view text) {
    if (isLatin1(text) || latinPrefix(text) == text.size()) return std::string(text);
    return converted(validUtf8(text), [](icu::StringPiece source, icu::ByteSink& sink, UErrorCode& status) {
        nfcNormalizer()->normalizeUTF8(0, source, sink, nullptr, status);
    });
}

bool canonicallyEqual(std::string_view a, std::string_view b) { return a == b || nfc(a) == nfc(b); }

bool equalIgnoringCase(std::string_view a, std::string_view b) { return a == b || folded(a) == folded(b); }

bool containsIgnoringCase(std::string_view haystack, std::string_view needle) {
    return needle.empty() || folded(haystack).contains(folded(needle));
}

std::optional<std::string_view> findIgnoringCase(std::string_view haystack, std::string_view needle) {
    if (needle.empty()) return std::nullopt;
    const auto wanted = folded(needle);
    std::string text;
    std::vector<std::size_t>
        places; // Offset in the haystack of each byte of its folded form, and of its end.
    for (auto rest = haystack; !rest.empty();) {
        const auto length = decodeScalar(rest).lengthInBytes;
        text += folded(rest.substr(0, length));
        places.resize(text.size(), haystack.size() - rest.size());
        rest.remove_prefix(length);
    }
    places.push_back(haystack.size());
    const auto isBoundary = [&places](std::size_t at) { return at == 0 || places[at] != places[at - 1]; };
    for (auto at = text.find(wanted); at != std::string::npos; at = text.find(wanted, at + 1)) {
        const auto end = at + wanted.size();
        if (isBoundary(at) && isBoundary(end)) return haystack.substr(places[at], places[end] - places[at]);
    }
    return std::nullopt;
}

} // namespace querlin
