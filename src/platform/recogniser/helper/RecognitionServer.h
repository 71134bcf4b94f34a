#pragma once

#include "platform/helper/server/HelperServer.h"
#include "platform/recogniser/helper/RecognitionEngine.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace querlin {

/// The helper's side of recognition: sessions on one engine.
class RecognitionServer final : public HelperService {
public:
    RecognitionServer(HelperServer& server, MakeEngine makeEngine) :
        server_(server), makeEngine_(std::move(makeEngine)) {}

    std::expected<void, std::string> open(std::string_view request) override;
    bool handle(const HelperProtocol::Frame& frame) override;

private:
    using Frame = HelperProtocol::Frame;

    struct Session {
        std::unique_ptr<EngineSession> recognition;
        std::uint64_t consumedInSamples = 0;
        std::string volatileText;
    };

    // Each is false where the connection is to end.
    bool prepare(const Frame& frame);
    bool begin(const Frame& frame);
    bool audio(const Frame& frame);
    bool end(const Frame& frame);

    PieceSink sinkOf(std::uint32_t number, Session& session);

    HelperServer& server_;
    MakeEngine makeEngine_;
    std::unique_ptr<RecognitionEngine> engine_;
    std::map<std::uint32_t, Session> sessions_;
};

} // namespace querlin
