#include "ui/menu/OpenFile.h"

#include "state/DiagnosticsLog.h"
#include "ui/brand/Brand.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QUrl>
#include <fmt/format.h>

namespace querlin::OpenFile {

namespace {

/// A file manager may have to be started first.
constexpr int longestAnswer = 10'000; // milliseconds

QUrl urlOf(const std::filesystem::path& file) { return QUrl::fromLocalFile(Brand::text(file.string())); }

void openFolder(const std::filesystem::path& file) {
    if (!QDesktopServices::openUrl(urlOf(file.parent_path())))
        DiagnosticsLog::note("menu",
                             fmt::format("„{}“ lässt sich nicht öffnen.", file.parent_path().string()));
}

} // namespace

void withDefaultApplication(const std::filesystem::path& file) {
    if (!QDesktopServices::openUrl(urlOf(file))) openFolder(file);
}

void inFileManager(const std::filesystem::path& file) {
    const auto name = QStringLiteral("org.freedesktop.FileManager1");
    auto call = QDBusMessage::createMethodCall(name, QStringLiteral("/org/freedesktop/FileManager1"), name,
                                               QStringLiteral("ShowItems"));
    call << QStringList(urlOf(file).toString(QUrl::FullyEncoded)) << QString();
    auto* answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call, longestAnswer),
                                               QCoreApplication::instance());
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, answer,
                     [file](QDBusPendingCallWatcher* finished) {
                         if (finished->isError()) openFolder(file);
                         finished->deleteLater();
                     });
}

} // namespace querlin::OpenFile
