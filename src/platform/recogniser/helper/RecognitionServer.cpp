#include "platform/recogniser/helper/RecognitionServer.h"

namespace querlin {

namespace Protocol = RecogniserProtocol;

std::expected<void, std::string> RecognitionServer::open(std::string_view request) {
    const auto wanted = Protocol::openRequestOf(request);
    if (wanted) {
        engine_ = makeEngine_(wanted->engine, [this](const std::string& text) {
            server_.send(HelperProtocol::Kind::note, 0, text);
        });
    }
    if (!engine_) return std::unexpected("Diesen Spracherkenner gibt es nicht.");
    return engine_->open(wanted->settings);
}

bool RecognitionServer::handle(const Frame& frame) {
    switch (frame.kind) {
    case Protocol::Kind::prepare:
        return prepare(frame);
    case Protocol::Kind::begin:
        return begin(frame);
    case Protocol::Kind::audio:
        return audio(frame);
    case Protocol::Kind::end:
        return end(frame);
    case Protocol::Kind::cancel:
        sessions_.erase(frame.session);
        return true;
    default:
        return false;
    }
}

bool RecognitionServer::prepare(const Frame& frame) {
    const auto words = Protocol::wordsOf(frame.payload);
    if (!words) return false;
    engine_->prepare(*words);
    return server_.send(HelperProtocol::Kind::alive, 0);
}

bool RecognitionServer::begin(const Frame& frame) {
    const auto words = Protocol::wordsOf(frame.payload);
    if (!words || sessions_.contains(frame.session)) return false;
    auto recognition = engine_->begin(*words);
    if (!recognition) return server_.send(Protocol::Kind::ended, frame.session, recognition.error());
    sessions_[frame.session].recognition = std::move(*recognition);
    return server_.send(Protocol::Kind::consumed, frame.session, Protocol::payloadOf(std::uint64_t(0)));
}

bool RecognitionServer::audio(const Frame& frame) {
    const auto samples = Protocol::samplesOf(frame.payload);
    if (!samples) return false;
    const auto found = sessions_.find(frame.session);
    if (found == sessions_.end()) return true; // It failed to begin; the other side knows by now.
    auto& session = found->second;
    session.consumedInSamples += samples->size();
    session.recognition->accept(*samples, sinkOf(frame.session, session));
    return server_.send(Protocol::Kind::consumed, frame.session,
                        Protocol::payloadOf(session.consumedInSamples));
}

bool RecognitionServer::end(const Frame& frame) {
    const auto found = sessions_.find(frame.session);
    if (found == sessions_.end()) return true;
    found->second.recognition->finish(sinkOf(frame.session, found->second));
    sessions_.erase(found);
    return server_.send(Protocol::Kind::ended, frame.session);
}

PieceSink RecognitionServer::sinkOf(std::uint32_t number, Session& session) {
    return [this, number, &session](const Protocol::Piece& piece) {
        if (!piece.isFinal && piece.text == session.volatileText) return;
        session.volatileText = piece.isFinal ? std::string() : piece.text;
        server_.send(Protocol::Kind::piece, number, Protocol::payloadOf(piece));
    };
}

} // namespace querlin
