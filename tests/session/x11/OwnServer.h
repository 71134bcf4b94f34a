#pragma once

#include "support/Desktop.h"

#include <csignal>
#include <string>

namespace querlin {

/// An X server beside the desktop's, to be killed.
class OwnServer {
public:
    OwnServer() : process_({"sh", "-c", "exec Xvfb -displayfd 1 -nolisten tcp -ac -noreset >" + file()}) {
        eventually([this] { return !(number_ = shell("cat " + file())).empty(); });
    }
    std::string display() const { return ":" + number_; }
    void kill() const { process_.signal(SIGKILL); }
    void stop() const { process_.signal(SIGSTOP); }

private:
    static std::string file() { return "\"$DESKTOP_DIR\"/own-server"; }

    std::string number_;
    Program process_;
};

} // namespace querlin
