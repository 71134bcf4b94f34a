#pragma once

#include <string_view>

/// What reads and searches law texts, under random bytes.
namespace querlin::LegalStage {

void archive(std::string_view bytes, unsigned options);
void law(std::string_view document, unsigned options);
void corpus(std::string_view bytes, unsigned options);
void search(std::string_view text, unsigned options);
void insertion(std::string_view text, unsigned options);

} // namespace querlin::LegalStage
