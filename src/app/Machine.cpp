#include "app/Machine.h"

#include "platform/av/SwrConverter.h"

namespace querlin {

Machine::Machine(const ApplicationPaths& paths, const Installation& own,
                 DisplayServers::Maker makeDisplayServer) :
    display(makeDisplayServer(queue)),
    accessibility([this] {
        const auto front = display->workspace().frontmostApplication();
        return front ? std::optional(front->processIdentifier) : std::nullopt;
    }),
    sounds(own.resources / "Sounds"),
    classic({.model = own.resources / "StarterModel",
             .makeConverter = makeSwrConverter,
             .program = own.recogniser}),
    streaming({.models = paths.models(), .libraries = own.recognitionLibraries, .program = own.recogniser}),
    access({.hasMicrophone = [this] { return hasMicrophone(); },
            .canRecognise = [this] { return canRecognise(); },
            .canListenToKeys = [this] { return display->canListenToKeys() && display->canPressKeys(); },
            .canLookIntoApplications = [this] { return accessibility.isAvailable(); },
            .enableAccessibility = [this] { return accessibility.requestEnable(); },
            .models = paths.models()}) {}

bool Machine::canRecognise() {
    if (streaming.isHere()) return true;
    const auto starter = classic.recognizer("de-DE");
    return starter && starter->isAvailable();
}

} // namespace querlin
