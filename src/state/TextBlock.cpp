#include "state/TextBlock.h"

#include "state/JsonFields.h"

namespace querlin {

const std::vector<TextBlock>& TextBlock::builtIn() {
    static const std::vector<TextBlock> blocks = {
        {"Anhörung", "Am {Datum} fand die persönliche Anhörung der betreuten Person statt. "
                     "Die Anhörung erfolgte in der Wohnung der betreuten Person."},
        {"Aktenvermerk", "Aktenvermerk vom {Datum}, {Uhrzeit} Uhr\n\n"},
        {"Grußformel", "Mit freundlichen Grüßen\n\n"},
    };
    return blocks;
}

JsonValue toJson(const TextBlock& block) {
    return JsonValue::Object{{"name", block.name}, {"content", block.content}};
}

std::optional<TextBlock> readJson(const JsonValue& json, const TextBlock*) {
    auto name = JsonFields::string(json, "name");
    auto content = JsonFields::string(json, "content");
    if (!name || !content) return std::nullopt;
    return TextBlock{std::move(*name), std::move(*content)};
}

} // namespace querlin
