#include "legal/LegalManifest.h"

#include "foundation/GermanFormat.h"
#include "state/JsonFields.h"
#include "state/JsonRecord.h"

namespace querlin {

namespace {

JsonValue rangesToJson(const std::vector<std::vector<std::int64_t>>& ranges) {
    JsonValue::Array list;
    for (const auto& range : ranges) {
        JsonValue::Array ends;
        for (const auto end : range) ends.emplace_back(end);
        list.emplace_back(std::move(ends));
    }
    return list;
}

std::optional<std::vector<std::vector<std::int64_t>>> readRanges(const JsonValue* json) {
    if (!json || !json->array()) return std::nullopt;
    std::vector<std::vector<std::int64_t>> ranges;
    for (const auto& element : *json->array()) {
        if (!element.array()) return std::nullopt;
        auto& range = ranges.emplace_back();
        for (const auto& end : *element.array()) {
            const auto number = end.integer();
            if (!number) return std::nullopt;
            range.push_back(*number);
        }
    }
    return ranges;
}

} // namespace

std::vector<LegalManifestEntry::Range> LegalManifestEntry::ranges() const {
    std::vector<Range> result;
    for (const auto& range : priorityRanges) {
        if (range.size() == 2 && range[0] <= range[1]) result.emplace_back(range[0], range[1]);
    }
    return result;
}

std::optional<Date> LegalManifestEntry::buildDate() const { return berlinStamp(builddate); }

JsonValue toJson(const LegalManifestEntry& entry) {
    return JsonValue::Object{{"abbr", entry.abbr},
                             {"slug", entry.slug},
                             {"source", entry.source},
                             {"tier", entry.tier},
                             {"priorityRanges", rangesToJson(entry.priorityRanges)},
                             {"builddate", entry.builddate},
                             {"stand", entry.stand},
                             {"lastModified", entry.lastModified},
                             {"sectionCount", entry.sectionCount},
                             {"sha256", entry.sha256}};
}

std::optional<LegalManifestEntry> readJson(const JsonValue& json, const LegalManifestEntry* /*tag*/) {
    auto abbr = JsonFields::string(json, "abbr");
    auto slug = JsonFields::string(json, "slug");
    auto source = JsonFields::string(json, "source");
    const auto tier = JsonFields::integer(json, "tier");
    auto ranges = readRanges(json.member("priorityRanges"));
    auto builddate = JsonFields::string(json, "builddate");
    auto stand = JsonFields::string(json, "stand");
    auto lastModified = JsonFields::string(json, "lastModified");
    const auto sectionCount = JsonFields::integer(json, "sectionCount");
    auto sha256 = JsonFields::string(json, "sha256");
    if (!abbr || !slug || !source || !tier || !ranges || !builddate || !stand || !lastModified ||
        !sectionCount || !sha256)
        return std::nullopt;
    return LegalManifestEntry{
        std::move(*abbr),   std::move(*slug),      std::move(*source), *tier,
        std::move(*ranges), std::move(*builddate), std::move(*stand),  std::move(*lastModified),
        *sectionCount,      std::move(*sha256)};
}

JsonValue toJson(const LegalManifest& manifest) {
    return JsonValue::Object{{"generated", manifest.generated}, {"laws", toJson(manifest.laws)}};
}

std::optional<LegalManifest> readJson(const JsonValue& json, const LegalManifest* /*tag*/) {
    auto generated = JsonFields::string(json, "generated");
    const auto* list = json.member("laws");
    auto laws = list ? fromJson<std::vector<LegalManifestEntry>>(*list) : std::nullopt;
    if (!generated || !laws) return std::nullopt;
    return LegalManifest{std::move(*generated), std::move(*laws)};
}

} // namespace querlin
