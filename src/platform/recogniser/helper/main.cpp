// The recognition helper: hosts one recogniser for the program that started it, which speaks to it through
// descriptor 3. What it hears is confidential: it leaves no core dump, nothing on its standard outputs, and
// no process of its own behind.

#include "foundation/NoCoreDumps.h"
#include "platform/pocketsphinx/engine/PocketSphinxEngine.h"
#include "platform/recogniser/helper/HelperServer.h"
#include "platform/sherpa/engine/SherpaEngine.h"

#include <csignal>
#include <cstdio>
#include <tuple>

#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace querlin {
namespace {

constexpr int socketDescriptor = 3;

bool isSocket(int descriptor) {
    int type = 0;
    socklen_t size = sizeof type;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_STREAM;
}

void leaveNoTraces() {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    preventCoreDumps();
}

/// A key struck in a terminal is for the program, which ends its helper when it has no more need of it.
void ignoreSignalsOfTerminal() {
    for (const int signal : {SIGINT, SIGQUIT, SIGHUP, SIGPIPE, SIGTSTP})
        std::ignore = ::signal(signal, SIG_IGN);
}

std::unique_ptr<RecognitionEngine> makeEngine(const std::string& name,
                                              const std::function<void(std::string)>& note) {
    if (name == PocketSphinxEngine::name) return std::make_unique<PocketSphinxEngine>(note);
    if (name == SherpaEngine::name) return std::make_unique<SherpaEngine>(note);
    return nullptr;
}

} // namespace
} // namespace querlin

int main() {
    if (!querlin::isSocket(querlin::socketDescriptor)) {
        std::ignore = std::fputs("querlin-recogniser wird von Querlin gestartet, nicht von Hand.\n", stderr);
        return 2;
    }
    querlin::leaveNoTraces();
    querlin::ignoreSignalsOfTerminal();
    querlin::HelperServer(querlin::socketDescriptor, querlin::makeEngine).serve();
    ::_exit(0); // The engines' destructors are of no use any more, and might crash.
}
