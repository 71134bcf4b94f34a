#include "Corpus.h"

#include "SyntheticLaws.h"

#include "foundation/Files.h"
#include "foundation/TextCase.h"
#include "legal/CorpusContainer.h"
#include "legal/LawEdition.h"
#include "legal/RawDeflate.h"

#include <algorithm>
#include <stdexcept>

#include <fmt/format.h>

namespace querlin::bench {

namespace {

std::string littleEndian(std::size_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i));
    return text;
}

/// A ZIP archive of one file (PKWARE APPNOTE).
std::string archiveOf(std::string_view name, std::string_view content) {
    const auto packed = RawDeflate::deflate(content);
    const auto common = littleEndian(20, 2) + littleEndian(0, 2) + littleEndian(8, 2) + std::string(4, '\0') +
                        littleEndian(RawDeflate::crc32(content), 4) + littleEndian(packed.size(), 4) +
                        littleEndian(content.size(), 4) + littleEndian(name.size(), 2) + littleEndian(0, 2);
    auto bytes = "PK\x03\x04" + common + std::string(name) + packed;
    const auto directory = bytes.size();
    bytes += "PK\x01\x02" + littleEndian(20, 2) + common + std::string(14, '\0') + std::string(name);
    const auto length = bytes.size() - directory;
    return bytes += "PK\x05\x06" + std::string(4, '\0') + littleEndian(1, 2) + littleEndian(1, 2) +
                    littleEndian(length, 4) + littleEndian(directory, 4) + littleEndian(0, 2);
}

Corpus corpusOf(std::string origin, std::vector<Archive> archives) {
    LegalCorpusFile file{std::string("2026-01-02"), {}};
    for (const auto& archive : archives) {
        auto law = lawFromArchive(archive.entry, archive.bytes);
        if (!law) throw std::runtime_error(law.error());
        file.laws.push_back(std::move(*law));
    }
    auto document = file.toJson();
    auto container = CorpusContainer::deflate(document).value();
    return {std::move(origin), std::move(archives), std::move(file.laws), std::move(document),
            std::move(container)};
}

LegalManifestEntry entryOf(std::string abbr, const std::string& slug) {
    LegalManifestEntry entry;
    entry.abbr = std::move(abbr);
    entry.slug = slug;
    entry.source = fmt::format("https://portal.example/{}/xml.zip", slug);
    entry.tier = 1;
    entry.priorityRanges = {{1, 40}};
    return entry;
}

double inMegabytes(std::size_t bytes) { return static_cast<double>(bytes) / 1e6; }

} // namespace

std::size_t Corpus::sectionCount() const {
    std::size_t count = 0;
    for (const auto& law : laws) count += law.sections.size();
    return count;
}

std::size_t Corpus::textBytes() const {
    std::size_t bytes = 0;
    for (const auto& law : laws) {
        for (const auto& section : law.sections) bytes += section.text.view().size();
    }
    return bytes;
}

std::string Corpus::description() const {
    std::size_t beyondAscii = 0;
    for (const auto& law : laws) {
        for (const auto& section : law.sections)
            beyondAscii += static_cast<std::size_t>(
                std::ranges::count_if(section.text.view(), [](char byte) { return (byte & 0x80) != 0; }));
    }
    return fmt::format(
        "{}: {} laws, {} sections, {:.1f} MB of JSON, {:.1f} MB packed, {:.1f} MB of text with {:.1f} % "
        "of its bytes beyond ASCII",
        origin, laws.size(), sectionCount(), inMegabytes(document.size()), inMegabytes(container.size()),
        inMegabytes(textBytes()), 100 * static_cast<double>(beyondAscii) / static_cast<double>(textBytes()));
}

std::optional<Corpus> realCorpus(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    std::error_code ignored;
    for (const auto& law : std::filesystem::directory_iterator(folder, ignored)) {
        if (std::filesystem::exists(law.path() / "xml.zip", ignored)) files.push_back(law.path() / "xml.zip");
    }
    std::ranges::sort(files);
    std::vector<Archive> archives;
    for (const auto& file : files) {
        const auto slug = file.parent_path().filename().string();
        auto bytes = Files::read(file);
        if (bytes)
            archives.push_back({entryOf(uppercase(slug.substr(0, slug.find('_'))), slug), std::move(*bytes)});
    }
    if (archives.empty()) return std::nullopt;
    return corpusOf("Real laws", std::move(archives));
}

Corpus syntheticCorpus(std::size_t sections) {
    std::vector<Archive> archives;
    for (const auto& law : syntheticLaws(sections))
        archives.push_back({entryOf(law.abbr, lowercase(law.abbr)), archiveOf("law.xml", law.document)});
    return corpusOf("Synthetic laws", std::move(archives));
}

} // namespace querlin::bench
