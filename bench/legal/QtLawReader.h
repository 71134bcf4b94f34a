#pragma once

#include "PlainCorpus.h"

#include "legal/LegalManifest.h"

#include <span>
#include <string_view>

namespace querlin::bench {

/// The peer of reading the portal's XML: the same rules over QXmlStreamReader, in Qt's strings. The result
/// is in UTF-8 like ours. Throws if the input is not XML.
PlainLaw readWithQt(std::string_view document, std::span<const LegalManifestEntry::Range> priorityRanges);

} // namespace querlin::bench
