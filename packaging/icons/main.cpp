// Writes the program's icon into a folder with the layout of icon themes: querlin-icons <folder> <name>.

#include "SvgDevice.h"
#include "ui/brand/BrandMark.h"

#include <array>
#include <cstdlib>
#include <iostream>

#include <QDir>
#include <QGuiApplication>
#include <QPainter>
#include <QSaveFile>

namespace querlin {
namespace {

constexpr std::array sizes = {16, 22, 24, 32, 48, 64, 96, 128, 256, 512};
constexpr int scalableSize = 512;

bool write(const QString& path, const QByteArray& content) {
    QSaveFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
           file.write(content) == content.size() && file.commit();
}

bool writePicture(const QString& path, int size) {
    return QDir().mkpath(QFileInfo(path).path()) && BrandMark::appIcon(size).save(path, "PNG");
}

bool writeScalable(const QString& path) {
    SvgDevice device(scalableSize);
    QPainter painter(&device);
    BrandMark::drawAppIcon(painter, scalableSize, BrandMark::SectionSign::with);
    painter.end();
    return device.isFaithful() && write(path, device.document().toUtf8());
}

int fail(const char* reason) {
    std::cerr << "querlin-icons: " << reason << '\n';
    return EXIT_FAILURE;
}

int run(const QDir& folder, const QString& name) {
    for (const int size : sizes) {
        const auto path =
            folder.filePath(QStringLiteral("%1x%1/apps/%2.png").arg(QString::number(size), name));
        if (!writePicture(path, size)) return fail("Ein Bild lässt sich nicht schreiben.");
    }
    if (!writeScalable(folder.filePath(QStringLiteral("scalable/apps/%1.svg").arg(name))))
        return fail("Die Vektorgrafik lässt sich nicht schreiben.");
    return EXIT_SUCCESS;
}

} // namespace
} // namespace querlin

int main(int count, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(count, arguments);
    const auto words = QGuiApplication::arguments();
    if (words.size() != 3) return querlin::fail("Aufruf: querlin-icons <Ordner> <Name>");
    return querlin::run(QDir(words[1]), words[2]);
}
