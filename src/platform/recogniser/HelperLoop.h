#pragma once

#include "platform/recogniser/HelperProcess.h"
#include "platform/recogniser/Mailbox.h"
#include "platform/recogniser/RunningSession.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace querlin {

/// What the process's thread is told to do.
struct RecogniserOrder {
    struct Prepare {
        std::vector<std::string> words;
    };
    struct Begin {
        std::vector<std::string> words;
        RecognitionObserver observer;
        std::shared_ptr<std::atomic<bool>> isSilent;
    };
    struct Sound {
        AudioFormat format;
        std::vector<float> samples;
    };
    struct Finish {};
    struct Cancel {};
    struct Quit {};

    std::uint32_t session = 0;
    std::variant<Prepare, Begin, Sound, Finish, Cancel, Quit> what;
};

/// What the process's thread does: orders in, frames out, frames in, observers' calls out.
class HelperLoop {
public:
    HelperLoop(RecogniserProcess::Setup setup, std::shared_ptr<Mailbox<RecogniserOrder>> mailbox,
               std::shared_ptr<std::atomic<pid_t>> helperId) :
        setup_(std::move(setup)), mailbox_(std::move(mailbox)), helperId_(std::move(helperId)) {}

    /// Until the order to quit.
    void run();

private:
    enum class State : std::uint8_t { idle, opening, ready };
    using Sessions = std::map<std::uint32_t, RunningSession>;

    // Orders
    void obey(RecogniserOrder order);
    void obey(std::uint32_t number, RecogniserOrder::Prepare& order);
    void obey(std::uint32_t number, RecogniserOrder::Begin& order);
    void obey(std::uint32_t number, RecogniserOrder::Sound& order);
    void obey(std::uint32_t number, RecogniserOrder::Finish& order);
    void obey(std::uint32_t number, RecogniserOrder::Cancel& order);
    void obey(std::uint32_t number, RecogniserOrder::Quit& order);

    // The helper's life
    void start();
    void stop();
    void opened(const std::string& error);
    void died();
    void giveUpIfSilent();

    // Frames
    void fillOutbox();
    void write();
    void read();
    /// False if it is malformed.
    bool handle(const RecogniserProtocol::Frame& frame);
    void wait();

    bool isWaiting() const;
    void end(Sessions::iterator session, std::expected<void, std::string> result);
    void fail(const std::string& error);

    RecogniserProcess::Setup setup_;
    std::shared_ptr<Mailbox<RecogniserOrder>> mailbox_;
    std::shared_ptr<std::atomic<pid_t>> helperId_;
    bool isQuitting_ = false;

    State state_ = State::idle;
    std::optional<HelperProcess> helper_;
    RecogniserProtocol::Parser inbox_;
    std::string outbox_;
    Instant startedAt_;
    /// When the helper last said something, or had nothing to say.
    Instant lastSign_;
    int deathsWhileOpening_ = 0;

    Sessions sessions_;
    std::uint32_t lastServed_ = 0;
    std::vector<std::string> preparedWords_;
    bool isPreparing_ = false; ///< the words are still to be told
};

} // namespace querlin
