#include "PlainCorpus.h"

#include "Zlib.h"

#include <fstream>

#include <nlohmann/json.hpp>
#include <unicode/locid.h>
#include <unicode/unistr.h>

namespace querlin::bench {

namespace {

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::string content(std::filesystem::file_size(file), '\0');
    stream.read(content.data(), static_cast<std::streamsize>(content.size()));
    return content;
}

std::string inflated(std::string_view container) {
    std::int64_t length = 0;
    std::memcpy(&length, container.data(), sizeof(length));
    return inflatedByZlib(container.substr(sizeof(length)), static_cast<std::size_t>(length));
}

std::vector<PlainLaw> lawsIn(const std::string& document) {
    const auto json = nlohmann::json::parse(document);
    std::vector<PlainLaw> laws;
    for (const auto& law : json.at("laws")) {
        auto& record = laws.emplace_back();
        law.at("abbr").get_to(record.abbr);
        law.at("name").get_to(record.name);
        law.at("tier").get_to(record.tier);
        law.at("slug").get_to(record.slug);
        law.at("stand").get_to(record.stand);
        law.at("builddate").get_to(record.builddate);
        law.at("source").get_to(record.source);
        record.sections.reserve(law.at("sections").size());
        for (const auto& section : law.at("sections")) {
            auto& part = record.sections.emplace_back();
            section.at("id").get_to(part.id);
            section.at("number").get_to(part.number);
            section.at("suffix").get_to(part.suffix);
            section.at("label").get_to(part.label);
            section.at("title").get_to(part.title);
            section.at("path").get_to(part.path);
            section.at("text").get_to(part.text);
            section.at("priority").get_to(part.priority);
        }
    }
    return laws;
}

void append(PlainBlob& blob, std::string_view text) {
    blob.bytes += plainLowercase(text);
    blob.bytes += '\n';
    blob.starts.push_back(blob.bytes.size());
}

} // namespace

std::string plainLowercase(std::string_view text) {
    auto letters = icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
    letters.toLower(icu::Locale::getRoot());
    std::string lower;
    letters.toUTF8String(lower);
    return lower;
}

PlainCorpus PlainCorpus::load(const std::filesystem::path& file) {
    PlainCorpus corpus;
    corpus.laws = lawsIn(inflated(contentOf(file)));
    for (const auto& law : corpus.laws) {
        for (const auto& section : law.sections) {
            append(corpus.titles, section.title);
            append(corpus.texts, section.text);
            corpus.byId.insert_or_assign(law.abbr + "-" + section.id, &section);
        }
    }
    return corpus;
}

} // namespace querlin::bench
