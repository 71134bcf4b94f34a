// The program's entry: one instance for each user, the toolkit's loop, an orderly end.

#include "app/DisplayServers.h"
#include "app/Machine.h"
#include "app/Program.h"
#include "foundation/NoCoreDumps.h"
#include "platform/dbus/ApplicationService.h"
#include "platform/qt/QuitSignals.h"
#include "platform/system/Installation.h"
#include "platform/system/InstanceLock.h"
#include "state/DiagnosticsLog.h"
#include "state/LogFile.h"
#include "state/Product.h"
#include "ui/brand/Brand.h"
#include "ui/brand/Theme.h"

#include <cstdio>
#include <cstdlib>

#include <QApplication>
#include <QLibraryInfo>
#include <QTranslator>
#include <fmt/format.h>

namespace querlin {
namespace {

/// A moment for the log's last lines on a slow disk.
constexpr auto logsLastWait = std::chrono::seconds(2);
constexpr auto attentionsWait = std::chrono::seconds(3);

/// Null, after a word to the user, where there is none: the toolkit would end the process with a crash. One
/// that was told to draw into memory needs none.
DisplayServers::Maker findDisplayServer() {
    if (const auto found = DisplayServers::find()) return found;
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) return DisplayServers::fallback();
    fmt::print(stderr, "{} braucht eine grafische Sitzung (X11 oder XWayland); es ist keine zu erreichen.\n",
               Product::name);
    return nullptr;
}

void setUpToolkit() {
    QApplication::setApplicationName(Brand::text(Product::name));
    QApplication::setDesktopFileName(Brand::text(Product::applicationId));
    QApplication::setQuitOnLastWindowClosed(false); // It has none, as a rule.
    // Menus of text fields, names of keys.
    static QTranslator german;
    if (german.load(QStringLiteral("qtbase_de"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&german);
}

int run(const ApplicationPaths& paths, DisplayServers::Maker makeDisplayServer) {
    const auto own = Installation::ofThisProgram();
    Machine machine(paths, own, makeDisplayServer);
    Program delegate(machine,
                     {.executable = Brand::utf8(QApplication::applicationFilePath()),
                      .resources = own.resources,
                      .paths = paths},
                     [] { QCoreApplication::exit(); });
    const QuitSignals signals;
    const auto theme = Theme::apply();
    delegate.start();
    const int status = QApplication::exec();
    delegate.end();
    return status;
}

int start(int argumentCount, char** arguments) {
    preventCoreDumps();
    const auto paths = ApplicationPaths::fromEnvironment();
    const SystemClock clock;
    LogFile log(paths.log, clock);
    const DiagnosticsLog::Installation installation(log);

    const auto lock = InstanceLock::acquire(InstanceLock::folder(paths.support), Product::applicationId);
    if (!lock) {
        const bool isShown =
            ApplicationService::activateOther(std::string(Product::applicationId), attentionsWait);
        if (!isShown) fmt::print(stderr, "{} läuft schon.\n", Product::name);
        return EXIT_SUCCESS;
    }
    const auto makeDisplayServer = findDisplayServer();
    if (!makeDisplayServer) return EXIT_FAILURE;
    const QApplication application(argumentCount, arguments);
    setUpToolkit();
    const int status = run(paths, makeDisplayServer);
    DiagnosticsLog::note("app", "=== Ende ===");
    log.flush(logsLastWait);
    return status;
}

} // namespace
} // namespace querlin

int main(int argumentCount, char** arguments) { return querlin::start(argumentCount, arguments); }
