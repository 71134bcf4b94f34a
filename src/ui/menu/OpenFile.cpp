#include "ui/menu/OpenFile.h"

#include "state/DiagnosticsLog.h"
#include "ui/brand/Brand.h"

#include <QDesktopServices>
#include <QUrl>
#include <fmt/format.h>

namespace querlin::OpenFile {

namespace {

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

void inFileManager(FileManager& manager, const std::filesystem::path& file) {
    manager.show(Brand::utf8(urlOf(file).toString(QUrl::FullyEncoded)), [file] { openFolder(file); });
}

} // namespace querlin::OpenFile
