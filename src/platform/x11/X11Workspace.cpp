#include "platform/x11/X11Workspace.h"

#include "platform/x11/ActiveWindow.h"
#include "state/DiagnosticsLog.h"

#include <fmt/format.h>

namespace querlin {

namespace {

constexpr Duration longestAnswer = std::chrono::milliseconds(250);
constexpr Duration betweenAttempts = std::chrono::seconds(1);

std::string capitalised(std::string name) {
    if (!name.empty() && name.front() >= 'a' && name.front() <= 'z')
        name.front() = static_cast<char>(name.front() - 'a' + 'A');
    return name;
}

std::optional<std::string> given(std::string text) {
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

} // namespace

X11Workspace::X11Workspace(std::string display) :
    display_(std::move(display)), reading_([this] {
        names_ = std::make_unique<const ApplicationNames>(ApplicationNames::installed());
        areNamesRead_ = true;
    }) {}

X11Workspace::~X11Workspace() { reading_.join(); }

bool X11Workspace::connect() {
    if (connection_ && connection_->drain()) return true;
    atoms_.reset();
    connection_.reset();
    const auto now = std::chrono::steady_clock::now();
    if (now < nextAttempt_) return false;
    auto connection = XcbConnection::open(display_, longestAnswer);
    if (!connection) {
        if (nextAttempt_ == Instant())
            DiagnosticsLog::note(
                "context",
                fmt::format("Die Anwendung im Vordergrund ist nicht zu erfahren: {}", connection.error()));
        nextAttempt_ = now + betweenAttempts;
        return false;
    }
    nextAttempt_ = {};
    connection_ = std::move(*connection);
    atoms_ = std::make_unique<XcbAtoms>(*connection_);
    return true;
}

std::optional<RunningApplication> X11Workspace::frontmostApplication() {
    if (!connect()) return std::nullopt;
    const auto window = ActiveWindow::look(*connection_, *atoms_);
    if (!window) return std::nullopt;
    // A suite's programs share one identifier (LibreOffice); then the class tells them apart.
    const auto* identifier = &window->applicationIdentifier;
    const auto* known = names();
    auto name = known ? known->ofIdentifier(*identifier) : std::nullopt;
    if (!name && known) {
        name = known->ofIdentifier(window->className);
        if (name) identifier = &window->className;
    }
    if (identifier->empty()) identifier = &window->className;
    if (!name) name = given(capitalised(window->className));
    return RunningApplication{window->processIdentifier, std::move(name), given(*identifier)};
}

} // namespace querlin
