#pragma once

#include "desktop/Workspace.h"
#include "platform/x11/ApplicationNames.h"
#include "platform/x11/XcbAtoms.h"

#include <atomic>
#include <memory>
#include <string>
#include <thread>

namespace querlin {

/// The program in front, as the window manager reports it. Its identifier is that of its desktop entry where
/// the window says so, else the class of its windows. Until the names of the installed programs are read,
/// which is done once and in the background, a program is called by that class too. Main thread.
class X11Workspace final : public Workspace {
public:
    /// `display` names the server (":1"); empty means that of the environment.
    explicit X11Workspace(std::string display = {});
    ~X11Workspace() override;
    X11Workspace(const X11Workspace&) = delete;
    X11Workspace& operator=(const X11Workspace&) = delete;

    /// The process identifier is 0 for a window that doesn't say it.
    std::optional<RunningApplication> frontmostApplication() override;

private:
    bool connect();
    const ApplicationNames* names() const { return areNamesRead_ ? names_.get() : nullptr; }

    const std::string display_;
    std::unique_ptr<XcbConnection> connection_;
    std::unique_ptr<XcbAtoms> atoms_;
    Instant nextAttempt_;
    std::unique_ptr<const ApplicationNames> names_;
    std::atomic<bool> areNamesRead_ = false; ///< then `names_` is left alone
    std::thread reading_;
};

} // namespace querlin
