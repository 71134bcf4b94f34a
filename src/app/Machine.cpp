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
    streaming({.models = paths.models(),
               .libraries = own.recognitionLibraries,
               .makeConverter = makeSwrConverter,
               .program = own.recogniser}),
    access({.hasMicrophone = [this] { return hasMicrophone(); },
            .canRecognise = [this] { return canRecognise(); },
            .canListenToKeys = [this] { return display->canListenToKeys() && display->canPressKeys(); },
            .canLookIntoApplications = [this] { return accessibility.isAvailable(); },
            .enableAccessibility = [this] { return accessibility.requestEnable(); },
            .models = paths.models()}) {}

bool Machine::canRecognise() { return streaming.isHere("") || classic.isHere("de-DE"); }

} // namespace querlin
