#pragma once

#include "cleanup/TextEnhancer.h"
#include "foundation/Task.h"

#include <cstdint>
#include <expected>
#include <memory>
#include <string>

namespace querlin {

/// One conversation with the model.
class LanguageModelSession {
public:
    virtual ~LanguageModelSession() = default;
    /// Loads what the first answer needs.
    virtual void prewarm() = 0;
    /// The model's answer, as it gives it. A low temperature (0 to 1) keeps it close to the prompt. Awaited
    /// on the main thread; the error's text is German.
    virtual Task<std::expected<std::string, EnhancementError>> respond(std::string prompt,
                                                                       double temperature) = 0;
};

/// A language model that runs on this machine: nothing that it is given leaves it. Main thread.
class LanguageModel {
public:
    enum class State : std::uint8_t {
        available,
        unsupported,
        deviceNotEligible,
        switchedOff,
        loading,
        unavailable
    };

    virtual ~LanguageModel() = default;
    virtual State state() const = 0;
    /// A session that follows these instructions; only where the state is `available`.
    virtual std::unique_ptr<LanguageModelSession> makeSession(std::string instructions) = 0;
};

/// Where there is no model.
class NoLanguageModel final : public LanguageModel {
public:
    State state() const override { return State::unsupported; }
    std::unique_ptr<LanguageModelSession> makeSession(std::string /*instructions*/) override {
        return nullptr;
    }
};

} // namespace querlin
