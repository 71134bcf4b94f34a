#include "ui/brand/Brand.h"

#include <cmath>

#include <QFontDatabase>

namespace querlin::Brand {

QColor withOpacity(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

QFont font(double size, QFont::Weight weight) {
    auto font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(static_cast<int>(std::lround(size)));
    font.setWeight(weight);
    return font;
}

QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

std::string utf8(const QString& text) { return text.toStdString(); }

} // namespace querlin::Brand
