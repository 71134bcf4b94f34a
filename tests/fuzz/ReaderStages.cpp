#include "ReaderStages.h"

#include "foundation/TextCase.h"
#include "foundation/Trimming.h"
#include "legal/CorpusContainer.h"
#include "legal/LegalCorpusFile.h"
#include "legal/LegalLookup.h"
#include "legal/LegalXMLParser.h"
#include "legal/SearchIndex.h"
#include "legal/TextBlob.h"
#include "legal/ZipReader.h"
#include "platform/helper/protocol/Frames.h"
#include "platform/recogniser/protocol/Protocol.h"
#include "platform/sherpa/OnnxMetadata.h"
#include "textchain/LawInsertion.h"
#include "textchain/Transcript.h"

#include <algorithm>
#include <ranges>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

namespace querlin::ReaderStage {

void archive(std::string_view bytes, unsigned /*options*/) {
    constexpr std::size_t mostBytesOutOfOne = 1032;
    const auto file = ZipReader::firstFile(bytes, ".xml");
    require(!file || file->size() <= bytes.size() * mostBytesOutOfOne, "a file is no longer than it can be");
    require(file || !file.error().description().empty(), "a failure has words");
}

void law(std::string_view document, unsigned options) {
    const std::vector<LegalManifestEntry::Range> ranges = {{1, options}};
    const auto read = LegalXMLParser::parse(document, ranges);
    if (!read) return require(!read.error().detail.empty(), "a failure has words");
    for (const auto& section : read->sections) {
        const auto text = section.text.view();
        requireValid(text);
        require(!text.empty() && trimWhitespaceAndNewlines(text) == text, "a text has words");
        for (const std::string_view forbidden : {"\n\n\n", "  ", " \n", "\n ", "\u00A0"})
            require(!text.contains(forbidden), "a text is in its form");
        require(!section.label.view().empty(), "a section has a label");
    }
}

void corpus(std::string_view bytes, unsigned options) {
    // Every other input is a container, the others are the document in it.
    const auto document = (options & 1U) != 0 ? CorpusContainer::inflate(bytes) : std::optional<BigText>(bytes);
    if (!document) return;
    const auto read = LegalCorpusFile::fromJson(std::string_view(*document));
    if (!read) return require(!read.error().empty(), "a failure has words");
    const auto again = LegalCorpusFile::fromJson(read->toJson());
    require(again && *again == *read, "what is written is read");
}

void search(std::string_view text, unsigned options) {
    std::vector<std::string> lines;
    for (const auto part : std::views::split(text, '|')) lines.emplace_back(part.begin(), part.end());
    if (lines.empty()) lines.emplace_back();
    const auto term = lowercase(lines.front());
    const auto count = lines.size() - 1;
    TextBlob blob(text.size());
    std::vector<LegalLaw> laws(2);
    std::string all;
    std::vector<std::size_t> starts;
    for (std::size_t i = 0; i < count; ++i) {
        blob.append(lines[i + 1]);
        starts.push_back(all.size());
        all += lowercase(lines[i + 1]) + "\n";
        auto& section = laws[i < options ? 0 : 1].sections.emplace_back();
        section.text = lines[i + 1];
    }
    starts.push_back(all.size());
    std::vector<std::size_t> expected;
    for (std::size_t i = 0; i < count && !term.empty(); ++i) {
        const auto place = all.find(term, starts[i]);
        if (place < starts[i + 1]) expected.push_back(i);
    }
    for (const auto registers : {Registers::portable, widestRegisters()}) {
        std::vector<std::size_t> found;
        const auto take = [&found](std::size_t number) {
            found.push_back(number);
            return true;
        };
        blob.search(term, {0, count}, take, registers);
        require(found == expected, "what anyone would find is found");
    }
    std::size_t hits = 0;
    SearchIndex index(text.size());
    for (const auto& one : laws) {
        for (const auto& section : one.sections) index.addTexts({section.title, section.text});
        index.addLaw(one.sections);
    }
    for (const std::size_t law : {0U, 1U}) {
        index.matches(lines.front(), SearchIndex::Part::texts, {law, law + 1}, [&](const SearchIndex::Entry& entry) {
            require(entry.law == law, "a law restricts");
            ++hits;
            return true;
        });
    }
    require(hits == expected.size(), "all laws together find everything");
}

namespace {

/// Laws that say what they are asked for.
class Echo final : public LegalLookup {
public:
    explicit Echo(std::string_view text) : text_(text) {}
    std::optional<LegalSection> section(std::string_view id, std::string_view law) override {
        if (law == "ZPO") return std::nullopt;
        LegalSection section;
        section.id = section.label = id;
        section.title = law;
        section.text = text_;
        return section;
    }
    std::optional<LegalHit> sectionInAnyLaw(std::string_view id) override {
        if (id == "7") return std::nullopt;
        return LegalHit{"BGB", *section(id, "")};
    }

private:
    SharedText text_;
};

} // namespace

void insertion(std::string_view text, unsigned /*options*/) {
    const auto spoken = normalizedTranscript(text);
    Echo laws("(1) Eins\n(2) füge Paragraph 1 ein\n(2a) auch\n\n(3) Drei");
    requireValid(SpokenLawReference::applyInsertCommands(spoken, laws));
    Echo echo(spoken);
    requireValid(SpokenLawReference::applyInsertCommands(spoken, echo));
    NoLaws none;
    require(SpokenLawReference::applyInsertCommands(spoken, none) == spoken, "without laws nothing changes");
}

namespace Protocol = RecogniserProtocol;

namespace {

void decode(const HelperProtocol::Frame& frame) {
    require(frame.payload.size() <= HelperProtocol::largestFrameInBytes, "a frame is no larger than the largest");
    if (const auto request = Protocol::openRequestOf(frame.payload))
        require(Protocol::openRequestOf(Protocol::payloadOf(*request)) == request, "what is written is read");
    if (const auto words = Protocol::wordsOf(frame.payload))
        require(Protocol::wordsOf(Protocol::payloadOf(*words)) == words, "what is written is read");
    if (const auto piece = Protocol::pieceOf(frame.payload))
        require(Protocol::pieceOf(Protocol::payloadOf(*piece)) == piece, "what is written is read");
    (void)Protocol::countOf(frame.payload);
    (void)Protocol::samplesOf(frame.payload);
}

} // namespace

void frames(std::string_view bytes, unsigned options) {
    HelperProtocol::Parser parser;
    const std::size_t step = 1 + options;
    while (!bytes.empty()) {
        const auto room = parser.room();
        const auto count = std::min({bytes.size(), room.size(), step});
        std::ranges::copy(bytes.substr(0, count), room.begin());
        parser.received(count);
        bytes.remove_prefix(count);
        for (;;) {
            const auto frame = parser.next();
            if (!frame) return require(!parser.next(), "once malformed, always malformed");
            if (!*frame) break;
            decode(**frame);
        }
    }
}

void model(std::string_view bytes, unsigned /*options*/) {
    static const int file = ::memfd_create("model", 0);
    static const auto path = "/proc/self/fd/" + std::to_string(file);
    require(::ftruncate(file, 0) == 0, "the file can be emptied");
    require(::pwrite(file, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()), "and written");
    const auto properties = OnnxMetadata::read(path);
    if (!properties) return;
    std::size_t length = 0;
    for (const auto& [key, value] : *properties) length += key.size() + value.size();
    require(length <= bytes.size(), "nothing comes from elsewhere");
}

} // namespace querlin::ReaderStage
