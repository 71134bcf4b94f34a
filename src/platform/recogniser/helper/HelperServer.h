#pragma once

#include "platform/recogniser/helper/RecognitionEngine.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace querlin {

/// The helper's side of the connection: does one frame after the other until the other side is gone or
/// says something malformed. Whatever it tells it tells from the work itself, so a sign of life means that
/// the work goes on; only while a model is loaded, for a minute at most, a thread speaks for it.
class HelperServer {
public:
    HelperServer(int socket, MakeEngine makeEngine) : socket_(socket), makeEngine_(std::move(makeEngine)) {}

    void serve();

private:
    using Kind = RecogniserProtocol::Kind;
    using Frame = RecogniserProtocol::Frame;
    using Piece = RecogniserProtocol::Piece;

    struct Session {
        std::unique_ptr<EngineSession> recognition;
        std::uint64_t consumedInSamples = 0;
        std::string volatileText;
    };

    // Each is false where the connection is to end.
    bool handle(const Frame& frame);
    bool open(const Frame& frame);
    bool prepare(const Frame& frame);
    bool begin(const Frame& frame);
    bool audio(const Frame& frame);
    bool end(const Frame& frame);
    bool tell(Kind kind, std::uint32_t session, std::string_view payload = {});

    PieceSink sinkOf(std::uint32_t number, Session& session);

    int socket_;
    MakeEngine makeEngine_;
    std::unique_ptr<RecognitionEngine> engine_;
    std::map<std::uint32_t, Session> sessions_;
    std::mutex telling_; ///< Also a loading engine has something to tell.
    std::atomic<bool> isConnected_ = true;
};

} // namespace querlin
