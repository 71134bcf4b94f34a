#pragma once

#include "platform/helper/HelperProcess.h"
#include "platform/helper/Mailbox.h"
#include "platform/helper/protocol/Frames.h"

#include "foundation/Time.h"

#include <atomic>
#include <expected>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace querlin {

/// The program's side of what one kind of helper does. All calls come on the helper's thread, one at a time.
class HelperClient {
public:
    virtual ~HelperClient() = default;
    /// After each start: the helper is ready, or why it can't be used (a German text).
    virtual void opened(const std::expected<void, std::string>& result) = 0;
    /// Adds the next frame for a helper that is ready; false if there is none, or it has enough to do for
    /// now.
    virtual bool appendNextFrame(std::string& bytes) = 0;
    /// What the helper says; false if it is malformed.
    virtual bool handle(const HelperProtocol::Frame& frame) = 0;
    /// Whether the helper owes it something.
    virtual bool isWaiting() const = 0;
    /// The helper died: what is under way begins again in the next one, or fails. True if something does.
    virtual bool beginAgain() = 0;
    /// What is under way fails with this error (a German text).
    virtual void fail(const std::string& error) = 0;
};

/// Work for the helper's thread; true if it needs a running helper.
using HelperOrder = std::move_only_function<bool()>;

struct HelperSetup {
    std::filesystem::path program;
    std::string openRequest; ///< the payload of `open`
    std::string name;        ///< for messages: "Der Spracherkenner"
    std::string logCategory;
    Duration longestSilence = std::chrono::seconds(12);
};

/// What a helper's thread does: orders in, frames out, frames in, the client's calls out.
class HelperLoop {
public:
    HelperLoop(HelperSetup setup, std::unique_ptr<HelperClient> client,
               std::shared_ptr<Mailbox<HelperOrder>> orders, std::shared_ptr<std::atomic<pid_t>> helperId) :
        setup_(std::move(setup)),
        client_(std::move(client)),
        orders_(std::move(orders)),
        helperId_(std::move(helperId)) {}

    /// Until `quit` is called, by an order.
    void run();
    void quit() { isQuitting_ = true; }

private:
    enum class State : std::uint8_t { idle, opening, ready };

    // The helper's life
    void start();
    void stop();
    void opened(const std::string& error);
    void died();
    void giveUpIfSilent();
    std::string said(std::string_view what) const { return setup_.name + std::string(what); }

    // Frames
    void fillOutbox();
    void write();
    void read();
    bool handle(const HelperProtocol::Frame& frame);
    void wait();
    bool isWaiting() const { return state_ == State::opening || client_->isWaiting(); }

    HelperSetup setup_;
    std::unique_ptr<HelperClient> client_;
    std::shared_ptr<Mailbox<HelperOrder>> orders_;
    std::shared_ptr<std::atomic<pid_t>> helperId_;
    bool isQuitting_ = false;

    State state_ = State::idle;
    std::optional<HelperProcess> helper_;
    HelperProtocol::Parser inbox_;
    std::string outbox_;
    Instant startedAt_;
    /// When the helper last said something, or had nothing to say.
    Instant lastSign_;
    int deathsWhileOpening_ = 0;
};

} // namespace querlin
