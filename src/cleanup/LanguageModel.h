#pragma once

#include "foundation/Task.h"
#include "foundation/Time.h"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <memory>
#include <string>

namespace querlin {

/// Why the model gave no text: German, for the user and for the log, so it never quotes a text.
struct EnhancementError {
    std::string description;
};

/// What is asked of the model, and what the answer may cost.
struct ModelQuestion {
    std::string prompt;
    /// From 0 to 1; a low one keeps the answer close to the prompt.
    double temperature = 0;
    /// From the call on.
    Duration timeLimit{};
    std::size_t longestAnswerInBytes = 0;
};

/// One conversation with the model. Main thread; no call waits.
class LanguageModelSession {
public:
    /// Cancels.
    virtual ~LanguageModelSession() = default;
    /// Loads what the first answer needs.
    virtual void prewarm() = 0;
    /// The model's answer, as it gives it. Both limits are the model's to keep: it stops computing there and
    /// answers with an error. The caller doesn't rely on that.
    virtual Task<std::expected<std::string, EnhancementError>> respond(ModelQuestion question) = 0;
    /// Stops computing the answer that is under way, if any; nobody waits for it any more.
    virtual void cancel() = 0;
};

/// Whether the language model can be used, and if not, why.
enum class LocalModelAvailability : std::uint8_t {
    available,
    notSetUp,        ///< none has been chosen
    tooLittleMemory, ///< this machine can't run the one that was chosen
    loading,
    unavailable ///< anything else
};

/// A language model that runs on this machine: nothing that it is given leaves it. Main thread.
class LanguageModel {
public:
    virtual ~LanguageModel() = default;
    virtual LocalModelAvailability availability() const = 0;
    /// A session that follows these instructions; only where the model is available.
    virtual std::unique_ptr<LanguageModelSession> makeSession(std::string instructions) = 0;
};

/// Where there is no model.
class NoLanguageModel final : public LanguageModel {
public:
    LocalModelAvailability availability() const override { return LocalModelAvailability::notSetUp; }
    std::unique_ptr<LanguageModelSession> makeSession(std::string /*instructions*/) override {
        return nullptr;
    }
};

} // namespace querlin
