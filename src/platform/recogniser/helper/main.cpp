// The recognition helper: hosts one recogniser for the program that started it.

#include "platform/helper/server/HelperMain.h"
#include "platform/pocketsphinx/engine/PocketSphinxEngine.h"
#include "platform/recogniser/helper/RecognitionServer.h"
#include "platform/sherpa/engine/SherpaEngine.h"

namespace querlin {
namespace {

std::unique_ptr<RecognitionEngine> makeEngine(const std::string& name,
                                              const std::function<void(std::string)>& note) {
    if (name == PocketSphinxEngine::name) return std::make_unique<PocketSphinxEngine>(note);
    if (name == SherpaEngine::name) return std::make_unique<SherpaEngine>(note);
    return nullptr;
}

} // namespace
} // namespace querlin

int main() {
    return querlin::runHelper("querlin-recogniser", [](querlin::HelperServer& server) {
        return std::make_unique<querlin::RecognitionServer>(server, querlin::makeEngine);
    });
}
