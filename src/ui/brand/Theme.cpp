#include "ui/brand/Theme.h"

#include "ui/brand/Brand.h"

#include <QApplication>
#include <QFontDatabase>
#include <QStyleFactory>

namespace querlin::Theme {

namespace {

struct Colors {
    QRgb primaryText;
    QRgb secondaryText;
    QRgb material;
    QRgb window;
    QRgb base;
    QRgb alternateBase;
    QRgb button;
    QRgb link;
};
constexpr Colors lightColors{.primaryText = 0xFF1D1D1F,
                             .secondaryText = 0xFF5F6470,
                             .material = 0xF2F7F8FA,
                             .window = 0xFFF3F4F6,
                             .base = 0xFFFFFFFF,
                             .alternateBase = 0xFFF7F8FA,
                             .button = 0xFFFBFBFC,
                             .link = 0xFF2A6BA3};
constexpr Colors darkColors{.primaryText = 0xFFF2F3F5,
                            .secondaryText = 0xFFA9B0BC,
                            .material = 0xF2262A31,
                            .window = 0xFF22252B,
                            .base = 0xFF1A1D22,
                            .alternateBase = 0xFF20242A,
                            .button = 0xFF30353D,
                            .link = 0xFF8FB8DD};

const Colors& colorsOf(Appearance appearance) {
    return appearance == Appearance::dark ? darkColors : lightColors;
}
const Colors& colors() { return colorsOf(appearance().get()); }

} // namespace

Published<Appearance>& appearance() {
    static Published<Appearance> value(Appearance::light);
    return value;
}

QColor primaryText() { return QColor::fromRgba(colors().primaryText); }
QColor secondaryText() { return QColor::fromRgba(colors().secondaryText); }
QColor material() { return QColor::fromRgba(colors().material); }

QPalette palette(Appearance appearance) {
    const auto& color = colorsOf(appearance);
    QPalette palette(QColor(color.button), QColor(color.window));
    const QColor text(color.primaryText);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, text);
    }
    palette.setColor(QPalette::Base, QColor(color.base));
    palette.setColor(QPalette::AlternateBase, QColor(color.alternateBase));
    palette.setColor(QPalette::ToolTipBase, QColor(color.base));
    palette.setColor(QPalette::PlaceholderText, QColor(color.secondaryText));
    palette.setColor(QPalette::Highlight, Brand::primaryDeep);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(color.link));
    const auto faded = Brand::withOpacity(text, 0.4);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, faded);
    }
    palette.setColor(QPalette::Disabled, QPalette::Light, Qt::transparent); // No shadow under disabled text.
    return palette;
}

Registration apply() {
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setFont(Brand::font(13));
    return appearance().subscribe([](Appearance now) { QApplication::setPalette(palette(now)); });
}

} // namespace querlin::Theme
