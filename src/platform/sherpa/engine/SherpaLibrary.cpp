#include "platform/sherpa/engine/SherpaLibrary.h"

#include <string_view>

#include <dlfcn.h>
#include <fmt/format.h>

namespace querlin::Sherpa {

namespace {

class Symbols {
public:
    explicit Symbols(void* library) : library_(library) {}

    template<class Function>
    void find(Function*& function, const char* name) {
        const auto symbol = std::string("SherpaOnnx") + name;
        function =
            reinterpret_cast<Function*>(::dlsym(library_, symbol.c_str())); // NOLINT(*-reinterpret-cast)
        isComplete_ = isComplete_ && function;
    }
    bool isComplete() const { return isComplete_; }

private:
    void* library_;
    bool isComplete_ = true;
};

} // namespace

std::expected<Functions, std::string> load(const std::string& file) {
    void* const library = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) return std::unexpected("Die Bibliothek sherpa-onnx lässt sich nicht laden.");
    Symbols symbols(library);
    Functions functions;
    symbols.find(functions.getVersionStr, "GetVersionStr");
    if (!symbols.isComplete()) return std::unexpected("Die Bibliothek ist nicht sherpa-onnx.");
    if (const std::string_view found = functions.getVersionStr(); found != version)
        return std::unexpected(
            fmt::format("sherpa-onnx hat die Version {}, erwartet wird {}.", found, version));
    symbols.find(functions.createOnlineRecognizer, "CreateOnlineRecognizer");
    symbols.find(functions.destroyOnlineRecognizer, "DestroyOnlineRecognizer");
    symbols.find(functions.createOnlineStream, "CreateOnlineStream");
    symbols.find(functions.createOnlineStreamWithHotwords, "CreateOnlineStreamWithHotwords");
    symbols.find(functions.destroyOnlineStream, "DestroyOnlineStream");
    symbols.find(functions.acceptWaveform, "OnlineStreamAcceptWaveform");
    symbols.find(functions.inputFinished, "OnlineStreamInputFinished");
    symbols.find(functions.isReady, "IsOnlineStreamReady");
    symbols.find(functions.decode, "DecodeOnlineStream");
    symbols.find(functions.getResult, "GetOnlineStreamResult");
    symbols.find(functions.destroyResult, "DestroyOnlineRecognizerResult");
    symbols.find(functions.isEndpoint, "OnlineStreamIsEndpoint");
    symbols.find(functions.reset, "OnlineStreamReset");
    if (!symbols.isComplete()) return std::unexpected("Die Bibliothek sherpa-onnx ist unvollständig.");
    return functions;
}

} // namespace querlin::Sherpa
