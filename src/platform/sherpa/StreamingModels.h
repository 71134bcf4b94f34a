#pragma once

#include "platform/recogniser/protocol/Protocol.h"

#include <expected>
#include <filesystem>
#include <string>
#include <vector>

namespace querlin {

/// A folder with a model that sherpa-onnx can run on sound that is still coming.
struct StreamingModel {
    std::string language; ///< a BCP 47 tag
    /// What the engine gets: files, kind and what it needs to know of them.
    RecogniserProtocol::OpenRequest request;

    /// Whether it serves a locale: German is German, in whatever country.
    bool serves(const std::string& locale) const;
};

/// What one of the user's folders holds; the error says in German why it is of no use.
struct ModelReport {
    std::string name;
    std::filesystem::path folder;
    std::expected<StreamingModel, std::string> model;
};

/// The models that the user has put into a folder, a folder for each.
///
/// A transducer is encoder…onnx, decoder…onnx, joiner…onnx and tokens.txt, a CTC model is one ONNX file and
/// tokens.txt; variants with "int8" in their names are preferred where they save time. `MODELL.json` may say
/// {"language": "de-DE", "modelingUnit": "bpe"}; without it the model is German. Words can be favoured with a
/// transducer that names its unit and, for "bpe", comes with bpe.vocab.
///
/// A file that would bring the library down is found here, without loading it.
namespace StreamingModels {

ModelReport inspect(const std::filesystem::path& folder);
/// In the order of their names; hidden folders don't count.
std::vector<ModelReport> inspectAll(const std::filesystem::path& folder);

} // namespace StreamingModels

} // namespace querlin
