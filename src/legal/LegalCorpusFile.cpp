#include "legal/LegalCorpusFile.h"

#include "foundation/Files.h"
#include "foundation/Json.h"
#include "foundation/Utf8.h"
#include "legal/CorpusContainer.h"

#include <array>
#include <memory>
#include <span>
#include <utility>

#include <fmt/format.h>
#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>
#include <rapidjson/writer.h>

namespace querlin {

namespace {

// The keys of the three kinds of object, and what they stand for.

/// Whether a text is looked at as soon as it is read, or by whoever follows the reading.
enum class Check : std::uint8_t { now, later };

template<class Record>
struct Field {
    std::string_view key;
    std::variant<SharedText Record::*, std::int64_t Record::*, bool Record::*> member;
    Check check = Check::now;
};

constexpr auto sectionFields =
    std::to_array<Field<LegalSection>>({{"id", &LegalSection::id},
                                        {"number", &LegalSection::number},
                                        {"suffix", &LegalSection::suffix},
                                        {"label", &LegalSection::label},
                                        {"title", &LegalSection::title, Check::later},
                                        {"path", &LegalSection::path},
                                        {"text", &LegalSection::text, Check::later},
                                        {"priority", &LegalSection::priority}});
/// Besides its sections, which come last.
constexpr auto lawFields = std::to_array<Field<LegalLaw>>({{"abbr", &LegalLaw::abbr},
                                                           {"name", &LegalLaw::name},
                                                           {"tier", &LegalLaw::tier},
                                                           {"slug", &LegalLaw::slug},
                                                           {"stand", &LegalLaw::stand},
                                                           {"builddate", &LegalLaw::builddate},
                                                           {"source", &LegalLaw::source}});
constexpr auto fileFields =
    std::to_array<Field<LegalCorpusFile>>({{"generated", &LegalCorpusFile::generated}});

constexpr std::string_view sectionsKey = "sections";
constexpr std::string_view lawsKey = "laws";

/// Most laws have fewer; those that have more move once or twice while they are read.
constexpr std::size_t usualSectionCount = 512;

/// Takes the events of an object: which field comes next, and which have been there.
template<class Record>
class FieldReader {
public:
    FieldReader(std::span<const Field<Record>> fields, std::string_view listKey) :
        fields_(fields), listKey_(listKey) {}

    void begin(Record& record) {
        record_ = &record;
        seen_ = 0;
        next_ = 0;
    }
    void key(std::string_view key) {
        // Mostly they come in the order in which they are written.
        for (std::size_t tried = 0; tried < fields_.size(); ++tried) {
            if (next_ >= fields_.size()) next_ = 0;
            if (fields_[next_].key == key) {
                current_ = next_++;
                return;
            }
            ++next_;
        }
        current_ = key == listKey_ && !listKey_.empty() ? list : unknown;
    }
    bool isList() const { return current_ == list; }
    bool isKnown() const { return current_ != unknown; }
    bool isCheckedLater() const {
        return current_ < fields_.size() && fields_[current_].check == Check::later;
    }
    /// False for a second list: what was handed on of the first can't be taken back.
    bool sawList() {
        const auto bit = 1U << fields_.size();
        return (std::exchange(seen_, seen_ | bit) & bit) == 0;
    }

    /// False if the field has another type.
    template<class Value>
    bool put(Value value) {
        if (current_ == unknown) return true;
        if (current_ == list) return false;
        const auto* member = std::get_if<Value Record::*>(&fields_[current_].member);
        if (!member) return false;
        record_->** member = std::move(value);
        seen_ |= 1U << current_;
        return true;
    }
    bool isComplete() const {
        const auto count = fields_.size() + (listKey_.empty() ? 0 : 1);
        return seen_ == (1U << count) - 1;
    }

private:
    static constexpr std::size_t list = 100;
    static constexpr std::size_t unknown = 101;

    std::span<const Field<Record>> fields_;
    std::string_view listKey_;
    Record* record_ = nullptr;
    std::size_t next_ = 0;
    std::size_t current_ = unknown;
    std::uint32_t seen_ = 0;
};

/// Builds the laws from the reader's events; false ends the reading.
class CorpusBuilder {
public:
    CorpusBuilder(std::shared_ptr<const void> document, LegalCorpusFile& file, CorpusReading& reading) :
        document_(std::move(document)), file_(file), reading_(reading) {}

    bool Null() {
        return plain([](auto& reader) { return !reader.isKnown(); });
    }
    bool Bool(bool value) { return put(value); }
    bool Int(int value) { return put(std::int64_t{value}); }
    bool Uint(unsigned value) { return put(std::int64_t{value}); }
    bool Int64(std::int64_t value) { return put(value); }
    /// Called for what is greater than 32 bits hold; no field takes more than 63.
    bool Uint64(std::uint64_t value) {
        return std::in_range<std::int64_t>(value) ? put(static_cast<std::int64_t>(value)) : Null();
    }
    bool Double(double) { return Null(); }
    bool RawNumber(const char*, rapidjson::SizeType, bool) { return false; }
    bool String(const char* text, rapidjson::SizeType length, bool) {
        const std::string_view view(text, length);
        const bool isCheckedLater = visit([](auto& reader) { return reader.isCheckedLater(); });
        if (!isCheckedLater && !isValidUtf8(view)) return false;
        return plain(
            [&](auto& reader) { return !reader.isKnown() || reader.put(SharedText(document_, view)); });
    }
    bool Key(const char* text, rapidjson::SizeType length, bool) {
        if (unknownDepth_ > 0) return true;
        visit([key = std::string_view(text, length)](auto& reader) {
            reader.key(key);
            return true;
        });
        return true;
    }

    bool StartObject() {
        if (unknownDepth_ > 0) return skipDeeper();
        switch (place_) {
        case Place::nowhere:
            place_ = Place::file;
            fileReader_.begin(file_);
            return true;
        case Place::laws:
            place_ = Place::law;
            lawReader_.begin(file_.laws.emplace_back());
            return true;
        case Place::sections:
            place_ = Place::section;
            sectionReader_.begin(file_.laws.back().sections.emplace_back());
            return true;
        case Place::file:
        case Place::law:
        case Place::section:
            return beginUnknown();
        }
        return false;
    }
    bool EndObject(rapidjson::SizeType) {
        if (unknownDepth_ > 0) return endUnknown();
        const bool isComplete = visit([](auto& reader) { return reader.isComplete(); });
        const bool isAccepted =
            isComplete && (place_ != Place::section || reading_.didRead(file_.laws.back().sections.back()));
        if (isComplete && place_ == Place::law) reading_.didReadLaw(file_.laws.back().sections);
        leaveObject();
        return isAccepted;
    }
    bool StartArray() {
        if (unknownDepth_ > 0) return skipDeeper();
        if (place_ == Place::file && fileReader_.isList()) {
            place_ = Place::laws;
            return fileReader_.sawList();
        }
        if (place_ == Place::law && lawReader_.isList()) {
            place_ = Place::sections;
            file_.laws.back().sections.reserve(usualSectionCount);
            return lawReader_.sawList();
        }
        return beginUnknown();
    }
    bool EndArray(rapidjson::SizeType) {
        if (unknownDepth_ > 0) return endUnknown();
        place_ = place_ == Place::sections ? Place::law : Place::file;
        return true;
    }

private:
    /// Where the events come from: within the document, its list of laws, a law, its list of sections, or a
    /// section.
    enum class Place : std::uint8_t { nowhere, file, laws, law, sections, section };

    void leaveObject() {
        if (place_ == Place::section) {
            place_ = Place::sections;
        } else {
            place_ = place_ == Place::law ? Place::laws : Place::nowhere;
        }
    }

    /// Calls with the reader of the object whose members come; false where a list's elements come.
    template<class Call>
    bool visit(Call call) {
        switch (place_) {
        case Place::file:
            return call(fileReader_);
        case Place::law:
            return call(lawReader_);
        case Place::section:
            return call(sectionReader_);
        case Place::nowhere:
        case Place::laws:
        case Place::sections:
            return false;
        }
        return false;
    }
    template<class Call>
    bool plain(Call call) {
        return unknownDepth_ > 0 || visit(call);
    }
    template<class Value>
    bool put(Value value) {
        return plain([value](auto& reader) { return reader.put(value); });
    }

    /// An object or a list that isn't ours may only be the value of a key that isn't known.
    bool beginUnknown() {
        if (!visit([](auto& reader) { return !reader.isKnown(); })) return false;
        unknownDepth_ = 1;
        return true;
    }
    bool skipDeeper() { return ++unknownDepth_ < Json::maximumDepth; }
    bool endUnknown() {
        --unknownDepth_;
        return true;
    }

    std::shared_ptr<const void> document_;
    LegalCorpusFile& file_;
    CorpusReading& reading_;
    Place place_ = Place::nowhere;
    std::size_t unknownDepth_ = 0;
    FieldReader<LegalCorpusFile> fileReader_{fileFields, lawsKey};
    FieldReader<LegalLaw> lawReader_{lawFields, sectionsKey};
    FieldReader<LegalSection> sectionReader_{sectionFields, ""};
};

/// Where the library's writer puts its bytes.
struct StringStream {
    using Ch = char; // NOLINT(readability-identifier-naming): the library's concept
    std::string text;
    void Put(char byte) { text += byte; }
    void Flush() {}
};
using Writer = rapidjson::Writer<StringStream>;

void write(Writer& writer, std::string_view text) {
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}
void write(Writer& writer, const SharedText& text) { write(writer, text.view()); }
void write(Writer& writer, std::int64_t number) { writer.Int64(number); }
void write(Writer& writer, bool value) { writer.Bool(value); }

template<class Record>
void writeFields(Writer& writer, const Record& record, std::span<const Field<Record>> fields) {
    for (const auto& field : fields) {
        write(writer, field.key);
        std::visit([&](auto member) { write(writer, record.*member); }, field.member);
    }
}

} // namespace

bool CorpusReading::didRead(const LegalSection& section) {
    return isValidUtf8(section.title) && isValidUtf8(section.text);
}

std::expected<void, std::string> LegalCorpusFile::readJson(BigText document, LegalCorpusFile& content,
                                                           CorpusReading& reading) {
    // The library goes down a level by calling itself; the builder refuses to go deep.
    constexpr unsigned flags = rapidjson::kParseInsituFlag;
    const auto owned = std::make_shared<BigText>(std::move(document));
    rapidjson::InsituStringStream stream(owned->data());
    CorpusBuilder builder(owned, content, reading);
    rapidjson::Reader reader;
    const auto result = reader.Parse<flags>(stream, builder);
    // The library ends at a zero byte, wherever it stands.
    if (!result.IsError() && stream.Tell() == owned->size()) return {};
    const bool isRefused = result.Code() == rapidjson::kParseErrorTermination;
    return std::unexpected(fmt::format(
        "Der Gesetzesbestand ist kein {} (Byte {}).",
        isRefused ? "vollständiger Bestand: Eine Angabe fehlt oder ist von falscher Art" : "gültiges JSON",
        result.IsError() ? result.Offset() : stream.Tell()));
}

std::expected<LegalCorpusFile, std::string> LegalCorpusFile::fromJson(BigText document) {
    LegalCorpusFile content;
    CorpusReading nobody;
    if (auto read = readJson(std::move(document), content, nobody); !read)
        return std::unexpected(std::move(read.error()));
    return content;
}

std::string LegalCorpusFile::toJson() const {
    StringStream stream;
    Writer writer(stream);
    writer.StartObject();
    writeFields<LegalCorpusFile>(writer, *this, fileFields);
    write(writer, lawsKey);
    writer.StartArray();
    for (const auto& law : laws) {
        writer.StartObject();
        writeFields<LegalLaw>(writer, law, lawFields);
        write(writer, sectionsKey);
        writer.StartArray();
        for (const auto& section : law.sections) {
            writer.StartObject();
            writeFields<LegalSection>(writer, section, sectionFields);
            writer.EndObject();
        }
        writer.EndArray();
        writer.EndObject();
    }
    writer.EndArray();
    writer.EndObject();
    return std::move(stream.text);
}

std::expected<void, std::string> loadCorpus(const std::filesystem::path& file, LegalCorpusFile& content,
                                            CorpusReading& reading) {
    const auto failed = [](std::string_view reason) {
        return std::unexpected(fmt::format("Laden fehlgeschlagen: {}", reason));
    };
    auto container = Files::readBig(file);
    if (!container) return failed(container.error().description());
    if (const auto length = CorpusContainer::documentLength(*container)) reading.willUnpack(*length);
    auto document = CorpusContainer::inflate(*container);
    if (!document) return std::unexpected("Korpus liess sich nicht entpacken.");
    *container = {}; // The memory is wanted elsewhere.
    const auto read = LegalCorpusFile::readJson(std::move(*document), content, reading);
    if (!read) return failed(read.error());
    return {};
}

std::expected<LegalCorpusFile, std::string> loadCorpus(const std::filesystem::path& file) {
    LegalCorpusFile content;
    CorpusReading nobody;
    auto loaded = loadCorpus(file, content, nobody);
    if (!loaded) return std::unexpected(std::move(loaded.error()));
    return content;
}

} // namespace querlin
