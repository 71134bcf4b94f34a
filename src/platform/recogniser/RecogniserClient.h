#pragma once

#include "platform/helper/HelperLoop.h"
#include "platform/recogniser/RunningSession.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace querlin {

/// What the helper's thread does for recognition: its sessions, which take turns. On that thread alone.
class RecogniserClient final : public HelperClient {
public:
    static constexpr auto name = "Der Spracherkenner";

    RecogniserClient(MakeAudioConverter makeConverter,
                     std::function<void(std::expected<void, std::string>)> onOpened) :
        makeConverter_(std::move(makeConverter)), onOpened_(std::move(onOpened)) {}

    void prepare(std::vector<std::string> words);
    void begin(std::uint32_t number, std::vector<std::string> words, RecognitionObserver observer,
               std::shared_ptr<std::atomic<bool>> isSilent);
    void append(std::uint32_t number, const AudioBuffer& buffer);
    void finish(std::uint32_t number);
    void cancel(std::uint32_t number);

    void opened(const std::expected<void, std::string>& result) override;
    bool appendNextFrame(std::string& bytes) override;
    bool handle(const HelperProtocol::Frame& frame) override;
    bool isWaiting() const override;
    bool beginAgain() override;
    void fail(const std::string& error) override;

private:
    using Sessions = std::map<std::uint32_t, RunningSession>;

    void giveUp(Sessions::iterator session, std::expected<void, std::string> result);
    void end(Sessions::iterator session, std::expected<void, std::string> result);

    MakeAudioConverter makeConverter_;
    std::function<void(std::expected<void, std::string>)> onOpened_;
    Sessions sessions_;
    std::uint32_t lastServed_ = 0;
    std::vector<std::uint32_t> givenUp_; ///< the helper is still to hear of it
    std::vector<std::string> preparedWords_;
    bool isPreparing_ = false; ///< the words are still to be sent
};

} // namespace querlin
