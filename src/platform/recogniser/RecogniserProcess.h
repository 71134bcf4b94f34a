#pragma once

#include "platform/recogniser/protocol/Protocol.h"

#include "foundation/Time.h"
#include "speech/AudioConverter.h"

#include <atomic>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include <sys/types.h>

namespace querlin {

struct RecogniserOrder;
template<class Order>
class Mailbox;

/// Where the results of one session go: on the process's thread, one call at a time, never within a call of
/// the session.
struct RecognitionObserver {
    /// A volatile text is replaced by the next piece, final ones add up. Without blanks at the ends.
    std::function<void(std::string text, bool isFinal)> onPiece;
    /// The last call, exactly once. The error is a German text.
    std::function<void(std::expected<void, std::string>)> onEnd;
};

/// One recognition. Letting it go cancels it. Any thread, one at a time; no call waits.
class RecogniserSession {
public:
    RecogniserSession(std::shared_ptr<Mailbox<RecogniserOrder>> mailbox, std::uint32_t number,
                      std::shared_ptr<std::atomic<bool>> isSilent);
    ~RecogniserSession() { cancel(); }
    RecogniserSession(const RecogniserSession&) = delete;
    RecogniserSession& operator=(const RecogniserSession&) = delete;

    void append(AudioFormat format, std::vector<float> samples);
    /// No more sound follows; the end comes when everything is recognised.
    void finish();
    /// The end comes at once. Behind this no piece is told any more, but a call under way may still run.
    void cancel();

private:
    std::shared_ptr<Mailbox<RecogniserOrder>> mailbox_;
    std::uint32_t number_;
    std::shared_ptr<std::atomic<bool>> isSilent_;
};

/// The recognition helper with one model, started at the first need and kept.
///
/// A helper that dies is started once more, and the sessions go on behind their last final piece, for which
/// their sound is kept; a session that sees a second death ends with an error. One that has shown no sign
/// of life for `longestSilence` while something is expected of it is killed, and its sessions end with an
/// error.
class RecogniserProcess {
public:
    struct Setup {
        std::filesystem::path program;
        RecogniserProtocol::OpenRequest model;
        MakeAudioConverter makeConverter = nullptr; ///< none if all sound comes as 16 kHz mono
        Duration longestSilence = std::chrono::seconds(12);
        /// Whether the model could be loaded; after each start of a helper, on the process's thread.
        std::function<void(std::expected<void, std::string>)> onOpened = nullptr;
    };

    explicit RecogniserProcess(Setup setup);
    /// Sessions that are still under way end with an error. Waits for a call of an observer that is being
    /// made, unless it is that call which lets the process go.
    ~RecogniserProcess();
    RecogniserProcess(const RecogniserProcess&) = delete;
    RecogniserProcess& operator=(const RecogniserProcess&) = delete;

    /// Starts the helper and loads the model, ready for a session that favours these words.
    void preload(std::vector<std::string> words = {});
    /// Any thread.
    std::unique_ptr<RecogniserSession> begin(std::vector<std::string> words, RecognitionObserver observer);

    /// The running helper's process; -1 if there is none.
    pid_t helper() const { return helper_->load(); }

    /// The helper beside this program's own file, else that of the build tree.
    static std::filesystem::path defaultProgram();

private:
    std::shared_ptr<Mailbox<RecogniserOrder>> mailbox_;
    std::atomic<std::uint32_t> lastNumber_ = 0;
    std::shared_ptr<std::atomic<pid_t>> helper_ = std::make_shared<std::atomic<pid_t>>(-1);
    std::jthread thread_;
};

} // namespace querlin
