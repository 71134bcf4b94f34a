#include "speech/LocalTranscribers.h"

#include "speech/ClassicTranscriber.h"
#include "speech/StreamingModelTranscriber.h"

#include <algorithm>
#include <cstdlib>

namespace querlin {

namespace {

std::string_view environment(const char* name) {
    const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nothing here sets variables.
    return value ? value : std::string_view();
}

} // namespace

std::string systemLocale(std::string_view lcAll, std::string_view lcMessages, std::string_view lang) {
    auto name = lcMessages.empty() ? lang : lcMessages;
    if (!lcAll.empty()) name = lcAll;
    name = name.substr(0, name.find_first_of(".@"));
    if (name.empty() || name == "C" || name == "POSIX") return "de-DE";
    std::string tag(name);
    std::ranges::replace(tag, '_', '-');
    return tag;
}

bool LocalTranscribers::hasStreaming() const { return streaming_.isHere(""); }

std::shared_ptr<StreamingTranscriber> LocalTranscribers::make(TranscriptionEngine engine) {
    switch (engine) {
    case TranscriptionEngine::streaming:
        return std::make_shared<StreamingModelTranscriber>(runtime_, streaming_);
    case TranscriptionEngine::classic:
        break;
    }
    return std::make_shared<ClassicTranscriber>(runtime_, classic_);
}

std::string LocalTranscribers::locale(DictationLanguage language) const {
    if (language != DictationLanguage::system) return std::string(rawValue(language));
    return systemLocale(environment("LC_ALL"), environment("LC_MESSAGES"), environment("LANG"));
}

} // namespace querlin
