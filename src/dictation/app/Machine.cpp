#include "dictation/app/Machine.h"

#include "platform/av/SwrConverter.h"

namespace querlin {

Machine::Machine(const ApplicationPaths& paths, const std::filesystem::path& resources) :
    accessibility([this] {
        const auto front = workspace.frontmostApplication();
        return front ? std::optional(front->processIdentifier) : std::nullopt;
    }),
    sounds(resources / "Sounds"),
    classic({.model = resources / "StarterModel", .makeConverter = makeSwrConverter}),
    streaming({.models = paths.models(), .libraries = {StreamingService::libraryOfBuild()}}),
    access({.hasMicrophone = [this] { return hasMicrophone(); },
            .canRecognise = [this] { return canRecognise(); },
            .canListenToKeys = [this] { return keyboard.isAvailable(); },
            .canLookIntoApplications = [this] { return accessibility.isAvailable(); },
            .enableAccessibility = [this] { return accessibility.requestEnable(); },
            .isKeyboardGrabbed = [this] { return keyboardGrab.isHeldByOther(); },
            .keyboardGrabber = [this] { return keyboardGrab.likelyOwner(); },
            .models = paths.models()}) {}

bool Machine::canRecognise() {
    if (streaming.isHere()) return true;
    const auto starter = classic.recognizer("de-DE");
    return starter && starter->isAvailable();
}

} // namespace querlin
