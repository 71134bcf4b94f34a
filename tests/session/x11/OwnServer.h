#pragma once

#include "support/Desktop.h"

#include <csignal>
#include <string>

#include <unistd.h>

namespace querlin {

/// An X server beside the desktop's, to be killed. Its number lies far from those that other tests' desktops pick for
/// themselves, so that none of them comes in its place.
class OwnServer {
public:
    OwnServer() :
        display_(freshDisplay()), process_({"sh", "-c", "exec Xvfb " + display_ + " -displayfd 1 -nolisten tcp -ac -noreset >" + ready}) {
        eventually([] { return !shell("cat " + ready).empty(); });
    }
    ~OwnServer() {
        kill();
        const auto number = display_.substr(1);
        for (const auto& left : {"/tmp/.X" + number + "-lock", "/tmp/.X11-unix/X" + number}) ::unlink(left.c_str());
    }
    OwnServer(const OwnServer&) = delete;
    OwnServer& operator=(const OwnServer&) = delete;

    std::string display() const { return display_; }
    void kill() const { process_.signal(SIGKILL); }
    void stop() const { process_.signal(SIGSTOP); }

private:
    static std::string freshDisplay() {
        shell("rm -f " + ready); // Of the server before.
        return ":" + std::to_string(1000 + ::getpid() % 50000);
    }

    inline static const std::string ready = "\"$DESKTOP_DIR\"/own-server";

    std::string display_;
    Program process_;
};

} // namespace querlin
