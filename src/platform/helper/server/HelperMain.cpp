#include "platform/helper/server/HelperMain.h"

#include "foundation/NoCoreDumps.h"

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

} // namespace

int runHelper(const char* program,
              const std::function<std::unique_ptr<HelperService>(HelperServer& server)>& makeService) {
    if (!isSocket(socketDescriptor)) {
        std::ignore = std::fprintf(stderr, "%s wird von Querlin gestartet, nicht von Hand.\n",
                                   program); // NOLINT(*-vararg)
        return 2;
    }
    leaveNoTraces();
    ignoreSignalsOfTerminal();
    HelperServer server(socketDescriptor);
    const auto service = makeService(server);
    server.serve(*service);
    ::_exit(0); // The destructors of what it hosts are of no use any more, and might crash.
}

} // namespace querlin
