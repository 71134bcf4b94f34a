#pragma once

#include "platform/recogniser/helper/RecognitionEngine.h"
#include "platform/sherpa/engine/Hotwords.h"
#include "platform/sherpa/engine/SherpaLibrary.h"

#include <optional>

namespace querlin {

/// sherpa-onnx. Settings: "library"; "kind", "tokens", "padding", "threads" and the model's files as
/// `StreamingModels` names them; "modelingUnit" and "bpeVocab" where words can be favoured.
class SherpaEngine final : public RecognitionEngine {
public:
    static constexpr std::string_view name = "sherpa-onnx";

    explicit SherpaEngine(std::function<void(std::string)> note) : note_(std::move(note)) {}

    std::expected<void, std::string> open(const Settings& settings) override;
    void prepare(const std::vector<std::string>&) override {}
    std::expected<std::unique_ptr<EngineSession>, std::string>
    begin(const std::vector<std::string>& words) override;

private:
    std::function<void(std::string)> note_;
    Settings settings_;
    Hotwords hotwords_; ///< empty where none can be favoured
    Sherpa::Functions functions_;
    const Sherpa::Recognizer* recognizer_ = nullptr; ///< for the process's life
};

} // namespace querlin
