#include "platform/recogniser/RecogniserClient.h"

#include <algorithm>
#include <utility>

namespace querlin {

namespace Protocol = RecogniserProtocol;

// Orders

void RecogniserClient::prepare(std::vector<std::string> words) {
    preparedWords_ = std::move(words);
    isPreparing_ = true;
}

void RecogniserClient::begin(std::uint32_t number, std::vector<std::string> words,
                             RecognitionObserver observer, std::shared_ptr<std::atomic<bool>> isSilent) {
    preparedWords_ = words;
    isPreparing_ = false;
    sessions_.try_emplace(number, number, std::move(words), std::move(observer), std::move(isSilent),
                          makeConverter_);
}

void RecogniserClient::append(std::uint32_t number, const AudioBuffer& buffer) {
    const auto found = sessions_.find(number);
    if (found == sessions_.end()) return;
    if (auto result = found->second.add(buffer); !result) giveUp(found, std::move(result));
}

void RecogniserClient::finish(std::uint32_t number) {
    if (const auto found = sessions_.find(number); found != sessions_.end()) found->second.finish();
}

void RecogniserClient::cancel(std::uint32_t number) {
    if (const auto found = sessions_.find(number); found != sessions_.end()) giveUp(found, {});
}

// The helper

void RecogniserClient::opened(const std::expected<void, std::string>& result) {
    if (onOpened_) onOpened_(result);
}

bool RecogniserClient::appendNextFrame(std::string& bytes) {
    if (!givenUp_.empty()) {
        HelperProtocol::append(bytes, Protocol::Kind::cancel, givenUp_.back());
        givenUp_.pop_back();
        return true;
    }
    if (std::exchange(isPreparing_, false)) {
        HelperProtocol::append(bytes, Protocol::Kind::prepare, 0, Protocol::payloadOf(preparedWords_));
        return true;
    }
    for (std::size_t asked = 0; asked < sessions_.size(); ++asked) {
        auto next = sessions_.upper_bound(lastServed_);
        if (next == sessions_.end()) next = sessions_.begin();
        lastServed_ = next->first;
        if (next->second.appendNextFrame(bytes)) return true;
    }
    return false;
}

bool RecogniserClient::handle(const HelperProtocol::Frame& frame) {
    const auto session = sessions_.find(frame.session);
    const bool isOurs = session != sessions_.end();
    switch (frame.kind) {
    case Protocol::Kind::consumed: {
        const auto count = Protocol::countOf(frame.payload);
        return count && (!isOurs || session->second.consumed(*count));
    }
    case Protocol::Kind::piece: {
        const auto piece = Protocol::pieceOf(frame.payload);
        return piece && (!isOurs || session->second.piece(*piece));
    }
    case Protocol::Kind::ended:
        if (!isOurs) return true;
        if (frame.payload.empty()) {
            end(session, {});
        } else {
            end(session, std::unexpected(frame.payload));
        }
        return true;
    default:
        return false;
    }
}

bool RecogniserClient::isWaiting() const {
    return std::ranges::any_of(sessions_, [](const auto& numbered) { return numbered.second.isWaiting(); });
}

bool RecogniserClient::beginAgain() {
    givenUp_.clear();
    for (auto next = sessions_.begin(); next != sessions_.end();) {
        const auto session = next++;
        if (session->second.isBegun() && !session->second.beginAgain())
            end(session, std::unexpected(std::string(name) + " ist zweimal abgestürzt."));
    }
    isPreparing_ = sessions_.empty();
    return !sessions_.empty();
}

void RecogniserClient::fail(const std::string& error) {
    givenUp_.clear();
    while (!sessions_.empty()) end(sessions_.begin(), std::unexpected(error));
}

// Sessions

void RecogniserClient::giveUp(Sessions::iterator session, std::expected<void, std::string> result) {
    if (session->second.isBegun()) givenUp_.push_back(session->first);
    end(session, std::move(result));
}

void RecogniserClient::end(Sessions::iterator session, std::expected<void, std::string> result) {
    auto ended = sessions_.extract(session);
    ended.mapped().end(std::move(result));
}

} // namespace querlin
