#pragma once

#include "platform/recogniser/protocol/Protocol.h"

#include "foundation/Time.h"
#include "speech/AudioConverter.h"
#include "speech/RecognitionSession.h"

#include <atomic>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

namespace querlin {

class Helper;
class RecogniserClient;

/// The recognition helper with one model, started at the first need and kept.
///
/// A helper that dies is started once more, and the sessions go on after their last final piece, for which
/// their sound is kept; a session that sees a second death ends with an error.
class RecogniserProcess {
public:
    struct Setup {
        std::filesystem::path program = defaultProgram();
        RecogniserProtocol::OpenRequest model;
        MakeAudioConverter makeConverter = nullptr; ///< none if all sound comes as 16 kHz mono
        Duration longestSilence = std::chrono::seconds(12);
        /// Whether the model could be loaded; after each start of a helper, on the helper's thread.
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
    /// Any thread. The sound may come in any format that the converter knows.
    std::unique_ptr<RecognitionSession> begin(std::vector<std::string> words, RecognitionObserver observer);

    /// The running helper's process; -1 if there is none.
    pid_t helper() const;

    /// The helper beside this program's own file, else that of the build tree.
    static std::filesystem::path defaultProgram();

private:
    std::atomic<std::uint32_t> lastNumber_ = 0;
    RecogniserClient* client_; ///< the helper thread's own
    std::unique_ptr<Helper> helper_;
};

} // namespace querlin
