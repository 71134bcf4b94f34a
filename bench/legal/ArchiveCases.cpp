#include "Cases.h"
#include "QtLawReader.h"
#include "Zlib.h"
#include "report/Measuring.h"

#include "foundation/Release.h"
#include "legal/LawEdition.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <stdexcept>

#include <expat.h>
#include <fmt/format.h>
#include <libdeflate.h>

namespace querlin::bench {

namespace {

/// A packed file within an archive.
struct PackedFile {
    std::string_view stream;
    std::size_t lengthInBytes = 0;
};

std::size_t numberAt(std::string_view bytes, std::size_t offset, std::size_t length) {
    std::size_t value = 0;
    std::memcpy(&value, bytes.data() + offset, length);
    return value;
}

/// The law in its archive; what the peers need of a ZIP reader.
PackedFile packedLaw(std::string_view archive) {
    const auto end = archive.rfind("PK\x05\x06");
    auto offset = numberAt(archive, end + 16, 4);
    for (auto left = numberAt(archive, end + 10, 2); left > 0; --left) {
        const auto entry = archive.substr(offset);
        const auto nameLength = numberAt(entry, 28, 2);
        if (entry.substr(46, nameLength).ends_with(".xml")) {
            const auto local = archive.substr(numberAt(entry, 42, 4));
            const auto start = 30 + numberAt(local, 26, 2) + numberAt(local, 28, 2);
            return {local.substr(start, numberAt(entry, 20, 4)), numberAt(entry, 24, 4)};
        }
        offset += 46 + nameLength + numberAt(entry, 30, 2) + numberAt(entry, 32, 2);
    }
    throw std::runtime_error("no law in the archive");
}

PlainLaw readPlainly(const Archive& archive) {
    const auto [stream, length] = packedLaw(archive.bytes);
    return readWithQt(inflatedByZlib(stream, length), archive.entry.ranges());
}

/// As fast as the XML parser can be: nobody takes its events.
int parseBare(const Archive& archive) {
    const auto [stream, length] = packedLaw(archive.bytes);
    const std::unique_ptr<libdeflate_decompressor, Release<libdeflate_free_decompressor>> decompressor(
        libdeflate_alloc_decompressor());
    std::string document(length, '\0');
    libdeflate_deflate_decompress(decompressor.get(), stream.data(), stream.size(), document.data(),
                                  document.size(), nullptr);
    const std::unique_ptr<XML_ParserStruct, Release<XML_ParserFree>> parser(XML_ParserCreate(nullptr));
    XML_SetElementHandler(
        parser.get(), [](void*, const XML_Char*, const XML_Char**) {}, [](void*, const XML_Char*) {});
    XML_SetCharacterDataHandler(parser.get(), [](void*, const XML_Char*, int) {});
    if (XML_Parse(parser.get(), document.data(), static_cast<int>(document.size()), 1) != XML_STATUS_OK)
        throw std::runtime_error("expat");
    return 0;
}

bool isSame(const LegalSection& ours, const PlainSection& peer) {
    return ours.id == peer.id && ours.number == peer.number && ours.label == peer.label &&
           ours.title == peer.title && ours.path == peer.path && ours.text == peer.text &&
           ours.priority == peer.priority;
}

} // namespace

void runArchiveCases(const Setting& setting) {
    const auto& archives = setting.corpus.archives;
    auto& report = setting.report;
    for (const auto& archive : archives) {
        const auto ours = lawFromArchive(archive.entry, archive.bytes);
        const auto peer = readPlainly(archive);
        if (!ours || ours->name != peer.name || ours->stand != peer.stand ||
            ours->builddate != peer.builddate || !std::ranges::equal(ours->sections, peer.sections, isSame))
            report.disagreement(fmt::format("about the law \"{}\"", archive.entry.abbr));
    }
    const auto ofAll = [&](auto read) {
        return [&archives, read] {
            double sum = 0;
            for (const auto& archive : archives) sum += secondsOf([&] { return read(archive); });
            return sum;
        };
    };
    const auto [ours, qt, bare] = interleavedMedians(
        setting.repetitions(15),
        ofAll([](const Archive& archive) { return lawFromArchive(archive.entry, archive.bytes); }),
        ofAll(readPlainly), ofAll(parseBare));
    const auto wanted = Bar::atLeast(3);
    const auto wantedOfBare = Bar::atMost(1.25);
    report.section("From the archives to sections");
    report.times("9 all laws | zlib, QXmlStreamReader", ours, qt, wanted);
    report.times("9 all laws | libdeflate, expat without handlers", ours, bare, wantedOfBare);
    report.verdict("9 either of both",
                   wanted.isReachedBy(qt / ours) || wantedOfBare.isReachedBy(ours / bare));
}

} // namespace querlin::bench
