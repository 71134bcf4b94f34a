#pragma once

#include "platform/recogniser/protocol/Protocol.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace querlin {

/// Takes the pieces of one session's text.
using PieceSink = std::function<void(RecogniserProtocol::Piece)>;

/// One session in an engine.
class EngineSession {
public:
    virtual ~EngineSession() = default;
    /// The next samples (16 kHz, mono), a fraction of a second.
    virtual void accept(std::span<const std::int16_t> samples, const PieceSink& sink) = 0;
    /// Hands over the rest as final. The last call.
    virtual void finish(const PieceSink& sink) = 0;
};

/// A recogniser with its model, inside of the helper. It may crash: nothing but the helper hangs on it. One
/// thread, sessions by turns. Errors are German texts.
class RecognitionEngine {
public:
    using Settings = std::map<std::string, std::string>;

    virtual ~RecognitionEngine() = default;
    /// Loads the model. The first call.
    virtual std::expected<void, std::string> open(const Settings& settings) = 0;
    /// Gets ready for a session that is likely to favour these words.
    virtual void prepare(const std::vector<std::string>& words) = 0;
    virtual std::expected<std::unique_ptr<EngineSession>, std::string>
    begin(const std::vector<std::string>& words) = 0;
};

/// The engine of a name; null if there is none. `note` takes lines for the log, which hold nothing that
/// was dictated.
using MakeEngine = std::function<std::unique_ptr<RecognitionEngine>(
    const std::string& name, const std::function<void(std::string)>& note)>;

} // namespace querlin
