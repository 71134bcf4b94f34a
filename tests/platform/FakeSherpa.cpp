// Has the names of sherpa-onnx, and its version or another. It ends the process as soon as a model is loaded, as
// the real one does over some faults.

#include <cstdlib>

#define FAKE(name)                                                                                                                         \
    extern "C" void SherpaOnnx##name();                                                                                                    \
    void SherpaOnnx##name() { std::_Exit(255); }

extern "C" const char* SherpaOnnxGetVersionStr();
const char* SherpaOnnxGetVersionStr() { return FAKE_VERSION; }

FAKE(CreateOnlineRecognizer)
FAKE(DestroyOnlineRecognizer)
FAKE(CreateOnlineStream)
FAKE(CreateOnlineStreamWithHotwords)
FAKE(DestroyOnlineStream)
FAKE(OnlineStreamAcceptWaveform)
FAKE(OnlineStreamInputFinished)
FAKE(IsOnlineStreamReady)
FAKE(DecodeOnlineStream)
FAKE(GetOnlineStreamResult)
FAKE(DestroyOnlineRecognizerResult)
FAKE(OnlineStreamIsEndpoint)
FAKE(OnlineStreamReset)
