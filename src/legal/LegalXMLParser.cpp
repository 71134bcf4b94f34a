#include "legal/LegalXMLParser.h"

#include "foundation/Graphemes.h"
#include "foundation/Pattern.h"
#include "foundation/Release.h"
#include "foundation/TextCase.h"
#include "foundation/Trimming.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <new>

#include <expat.h>
#include <fmt/format.h>

namespace querlin::LegalXMLParser {

std::string ParseError::description() const {
    return fmt::format("Gesetzestext nicht lesbar: {}", detail.empty() ? "unbekannt" : detail);
}

namespace {

/// The elements that mean something here.
enum class Element : std::uint8_t {
    other,
    norm,
    metadaten,
    text,
    standangabe,
    // What stands within "metadaten"
    langue,
    enbez,
    titel,
    standtyp,
    standkommentar,
    gliederungskennzahl,
    gliederungsbez,
    gliederungstitel,
    // What gives the text its form
    paragraph,
    line,
    cell
};

struct ElementName {
    std::string_view name;
    Element element = Element::other;
};

constexpr auto elementNames = std::to_array<ElementName>({
    {"P", Element::paragraph},
    {"DT", Element::line},
    {"BR", Element::line},
    {"tr", Element::line},
    {"row", Element::line},
    {"td", Element::cell},
    {"entry", Element::cell},
    {"norm", Element::norm},
    {"metadaten", Element::metadaten},
    {"text", Element::text},
    {"standangabe", Element::standangabe},
    {"langue", Element::langue},
    {"enbez", Element::enbez},
    {"titel", Element::titel},
    {"standtyp", Element::standtyp},
    {"standkommentar", Element::standkommentar},
    {"gliederungskennzahl", Element::gliederungskennzahl},
    {"gliederungsbez", Element::gliederungsbez},
    {"gliederungstitel", Element::gliederungstitel},
});

constexpr std::size_t placeCount = 64;

/// A place of its own for each of the names, by its length and its ends.
constexpr std::size_t placeOf(std::string_view name) {
    const auto first = static_cast<unsigned char>(name.front());
    const auto last = static_cast<unsigned char>(name.back());
    return (name.size() + first + (std::size_t{3} * last)) % placeCount;
}

constexpr auto elementsByPlace = [] {
    std::array<ElementName, placeCount> table{};
    for (const auto& row : elementNames) table.at(placeOf(row.name)) = row;
    return table;
}();
static_assert(std::ranges::all_of(elementNames,
                                  [](const auto& row) {
                                      return elementsByPlace.at(placeOf(row.name)).name == row.name;
                                  }),
              "two names have one place");

Element elementNamed(std::string_view name) {
    const auto& found = elementsByPlace.at(placeOf(name)); // A name has a letter at least.
    return found.name == name ? found.element : Element::other;
}

/// What an element puts in front of its content.
std::string_view separatorOf(Element element) {
    switch (element) {
    case Element::paragraph:
        return "\n\n";
    case Element::line:
        return "\n";
    case Element::cell:
        return "\t";
    default:
        return "";
    }
}

/// No law comes near it.
constexpr std::size_t deepestNesting = 256;

constexpr std::string_view noBreakSpace = "\u00A0";

/// Brings the text of a section into its form: runs of blanks are one blank, none stand at a line's ends, one
/// empty line at most stands between two lines. The tabs in front of table cells stay; those of the source
/// have become blanks before.
class Cleaner {
public:
    /// Writes into memory of the text's length.
    Cleaner(std::string_view text, char* result) : text_(text), start_(result), end_(result) {}

    /// The length of the result.
    std::size_t run() {
        for (std::size_t at = 0; at < text_.size();) at += step(at);
        return static_cast<std::size_t>(end_ - start_);
    }

private:
    static constexpr std::size_t block = 16;

    /// Takes some of the text from a place on; returns how much.
    std::size_t step(std::size_t at) {
        if (at > 0 && text_.size() - at >= block && isClean(&text_[at])) {
            end_ += text_.copy(end_, block, at);
            return block;
        }
        if (text_[at] == '\n') {
            lineFeed();
            return 1;
        }
        const bool isBlank = text_[at] == ' ';
        if (isBlank || text_.substr(at).starts_with(noBreakSpace)) {
            if (!endsIn(' ') && !endsIn('\n')) *end_++ = ' ';
            return isBlank ? 1 : noBreakSpace.size();
        }
        *end_++ = text_[at];
        return 1;
    }

    void lineFeed() {
        while (endsIn(' ')) --end_;
        const bool isSecondEmpty = endsIn('\n') && end_ - start_ > 1 && end_[-2] == '\n';
        if (!isSecondEmpty) *end_++ = '\n';
    }

    bool endsIn(char byte) const { return end_ > start_ && end_[-1] == byte; }

    /// A block that stays as it is: no line feed, nothing that may begin a no-break space, no blank after a
    /// blank of any kind or a line feed. `bytes` has one in front of it.
    static bool isClean(const char* bytes) {
        using Block = char __attribute__((vector_size(block)));
        Block here{};
        Block before{};
        std::memcpy(&here, bytes, block);
        std::memcpy(&before, bytes - 1, block);
        const auto isBehindBlank = (before == ' ') | (before == '\n') | (before == noBreakSpace.back());
        const auto unclean =
            (here == '\n') | (here == noBreakSpace.front()) | ((here == ' ') & isBehindBlank);
        std::array<std::uint64_t, 2> words{};
        std::memcpy(words.data(), &unclean, block);
        return (words[0] | words[1]) == 0;
    }

    std::string_view text_;
    char* start_;
    char* end_;
};

std::string cleaned(std::string_view text) {
    std::string result;
    result.resize_and_overwrite(
        text.size(), [text](char* room, std::size_t /*size*/) { return Cleaner(text, room).run(); });
    return std::string(trimWhitespaceAndNewlines(result));
}

struct SectionNumber {
    std::string digits;
    std::string suffix;
};

/// "§ 1814A Überschrift" -> "1814", "a".
std::optional<SectionNumber> sectionNumber(const std::string& designation) {
    static const Pattern pattern(R"(^§+\s*(\d+)([a-z]*))", LetterCase::ignored);
    std::optional<SectionNumber> number;
    pattern.replaceEach(designation, [&number](Pattern::Groups groups) -> std::optional<std::string> {
        number = {std::string(groups[1]), lowercase(groups[2])};
        return std::nullopt;
    });
    return number;
}

/// 0 if it doesn't fit.
std::int64_t valueOf(std::string_view digits) {
    std::int64_t value = 0;
    const auto* end = digits.data() + digits.size(); // The pattern has found one at least.
    const auto [rest, error] = std::from_chars(&digits.front(), end, value);
    return error == std::errc() && rest == end ? value : 0;
}

/// Keeps the state between the parser's events, and closes one "norm" at a time.
class Reader {
public:
    explicit Reader(std::span<const LegalManifestEntry::Range> priorityRanges) :
        priorityRanges_(priorityRanges) {}

    std::expected<Result, ParseError> read(std::string_view document);

private:
    using Attributes = const XML_Char**;

    void begin(Element element, Attributes attributes);
    void characters(std::string_view text);
    void end();

    void finishNorm();
    void addHeading(std::string_view outlineNumber);
    std::string outlinePath() const;
    void refuse(std::string_view reason);
    std::string* bufferOf(Element element);

    std::span<const LegalManifestEntry::Range> priorityRanges_;
    std::unique_ptr<XML_ParserStruct, Release<XML_ParserFree>> parser_{XML_ParserCreate(nullptr)};
    std::string refusal_;
    Result result_;

    std::vector<Element> path_;
    bool inText_ = false;
    bool inMetadata_ = false;
    bool isFirstNorm_ = true;
    /// The headings above, by their level.
    std::map<std::size_t, std::string> hierarchy_;

    std::string text_;
    std::string enbez_;
    std::string titel_;
    std::string standtyp_;
    std::string standkommentar_;
    std::string gliederungskennzahl_;
    std::string gliederungsbez_;
    std::string gliederungstitel_;
};

std::expected<Result, ParseError> Reader::read(std::string_view document) {
    if (!parser_) throw std::bad_alloc();
    auto* parser = parser_.get();
    XML_SetUserData(parser, this);
    XML_SetElementHandler(
        parser,
        [](void* self, const XML_Char* name, Attributes attributes) {
            static_cast<Reader*>(self)->begin(elementNamed(name), attributes);
        },
        [](void* self, const XML_Char*) { static_cast<Reader*>(self)->end(); });
    XML_SetCharacterDataHandler(parser, [](void* self, const XML_Char* text, int length) {
        static_cast<Reader*>(self)->characters({text, static_cast<std::size_t>(length)});
    });
    XML_SetEntityDeclHandler(parser, [](void* self, const XML_Char*, int, const XML_Char*, int,
                                        const XML_Char*, const XML_Char*, const XML_Char*, const XML_Char*) {
        static_cast<Reader*>(self)->refuse("eigene Entitäten sind nicht erlaubt");
    });
    XML_SetSkippedEntityHandler(parser, [](void* self, const XML_Char*, int) {
        static_cast<Reader*>(self)->refuse("unbekannte Entität");
    });

    constexpr std::size_t largestPiece = std::numeric_limits<int>::max() / 2;
    auto status = XML_STATUS_OK;
    bool isLast = false;
    while (status == XML_STATUS_OK && !isLast) {
        const auto piece = document.substr(0, largestPiece);
        document.remove_prefix(piece.size());
        isLast = document.empty();
        // NOLINTNEXTLINE(bugprone-suspicious-stringview-data-usage): its length stands beside it
        status = XML_Parse(parser, piece.data(), static_cast<int>(piece.size()), isLast ? 1 : 0);
    }
    if (status == XML_STATUS_OK) return std::move(result_);
    if (!refusal_.empty()) return std::unexpected(ParseError{std::move(refusal_)});
    const auto* words = XML_ErrorString(XML_GetErrorCode(parser));
    return std::unexpected(
        ParseError{fmt::format("{} (Zeile {})", words ? words : "", XML_GetCurrentLineNumber(parser))});
}

void Reader::begin(Element element, Attributes attributes) {
    if (path_.size() >= deepestNesting) refuse("zu tief verschachtelt");
    switch (element) {
    case Element::norm:
        for (; isFirstNorm_ && *attributes; attributes += 2) { // NOLINT: the library's pairs of strings
            if (std::string_view(attributes[0]) == "builddate") result_.builddate = attributes[1];
        }
        for (auto* buffer :
             {&enbez_, &titel_, &gliederungskennzahl_, &gliederungsbez_, &gliederungstitel_, &text_})
            buffer->clear();
        break;
    case Element::metadaten:
        inMetadata_ = true;
        break;
    case Element::text:
        inText_ = true;
        text_.clear();
        break;
    case Element::standangabe:
        standtyp_.clear();
        standkommentar_.clear();
        break;
    default:
        if (inText_) text_ += separatorOf(element);
    }
    path_.push_back(element);
}

void Reader::characters(std::string_view text) {
    if (path_.empty()) return;
    if (inText_) {
        const auto start = text_.size();
        text_ += text;
        // From here on a tab stands in front of a table's cell and nowhere else.
        std::replace(text_.begin() + static_cast<std::ptrdiff_t>(start), text_.end(), '\t', ' ');
    } else if (auto* buffer = inMetadata_ ? bufferOf(path_.back()) : nullptr) {
        *buffer += text;
    }
}

/// Where the characters of an element of the metadata go; nowhere for most.
std::string* Reader::bufferOf(Element element) {
    switch (element) {
    case Element::langue:
        return isFirstNorm_ ? &result_.name : nullptr;
    case Element::enbez:
        return &enbez_;
    case Element::titel:
        return &titel_;
    case Element::standtyp:
        return &standtyp_;
    case Element::standkommentar:
        return &standkommentar_;
    case Element::gliederungskennzahl:
        return &gliederungskennzahl_;
    case Element::gliederungsbez:
        return &gliederungsbez_;
    case Element::gliederungstitel:
        return &gliederungstitel_;
    default:
        return nullptr;
    }
}

void Reader::end() {
    const auto element = path_.back();
    path_.pop_back();
    switch (element) {
    case Element::metadaten:
        inMetadata_ = false;
        break;
    case Element::text:
        inText_ = false;
        break;
    case Element::standangabe:
        if (trimBlanksAndTabs(standtyp_) == "Stand" && result_.stand.empty())
            result_.stand = trimWhitespaceAndNewlines(standkommentar_);
        break;
    case Element::norm:
        finishNorm();
        isFirstNorm_ = false;
        break;
    default:
        break;
    }
}

void Reader::finishNorm() {
    if (const auto outlineNumber = trimBlanksAndTabs(gliederungskennzahl_); !outlineNumber.empty()) {
        addHeading(outlineNumber);
        return;
    }
    const std::string designation(trimWhitespaceAndNewlines(enbez_));
    const auto number = sectionNumber(designation);
    if (!number) return;
    auto text = cleaned(text_);
    if (text.empty()) return;
    LegalSection section;
    section.number = valueOf(number->digits);
    section.priority = std::ranges::any_of(priorityRanges_, [&](const auto& range) {
        return range.first <= section.number && section.number <= range.second;
    });
    section.id = number->digits + number->suffix;
    section.suffix = number->suffix;
    section.label = designation;
    section.title = trimWhitespaceAndNewlines(titel_);
    section.path = outlinePath();
    section.text = std::move(text);
    result_.sections.push_back(std::move(section));
}

void Reader::addHeading(std::string_view outlineNumber) {
    constexpr std::size_t digitsOfALevel = 3;
    const auto level = graphemeCount(outlineNumber) / digitsOfALevel;
    const auto bez = trimWhitespaceAndNewlines(gliederungsbez_);
    const auto titel = trimWhitespaceAndNewlines(gliederungstitel_);
    hierarchy_[level] = fmt::format("{}{}{}", bez, bez.empty() || titel.empty() ? "" : " – ", titel);
    hierarchy_.erase(hierarchy_.upper_bound(level), hierarchy_.end());
}

std::string Reader::outlinePath() const {
    std::string path;
    for (const auto& [level, heading] : hierarchy_) path.append(path.empty() ? "" : " / ").append(heading);
    return path;
}

/// Stops the reading; the first reason counts.
void Reader::refuse(std::string_view reason) {
    if (refusal_.empty()) refusal_ = reason;
    XML_StopParser(parser_.get(), XML_FALSE);
}

} // namespace

std::expected<Result, ParseError> parse(std::string_view document,
                                        std::span<const LegalManifestEntry::Range> priorityRanges) {
    return Reader(priorityRanges).read(document);
}

} // namespace querlin::LegalXMLParser
