#pragma once

#include "state/Product.h"

#include <string_view>

#include <QColor>
#include <QFont>
#include <QString>

/// The names, colours and measures of the product. Lengths are in logical pixels.
namespace querlin::Brand {

inline constexpr std::string_view productName = Product::name;
inline constexpr std::string_view suiteName = "Mandolan";
inline constexpr std::string_view suiteURL = "https://mandolan.example";
inline constexpr std::string_view suiteURLLabel = "mandolan.example";
inline constexpr std::string_view applicationId = Product::applicationId;

inline constexpr QColor primary{0x3B, 0x8F, 0xD4};
inline constexpr QColor primaryDeep{0x2A, 0x6B, 0xA3};
inline constexpr QColor success{0x2E, 0x7D, 0x50};
inline constexpr QColor warning{0xB5, 0x6E, 0x11};
inline constexpr QColor recording{0xC0, 0x39, 0x2B};
inline constexpr QColor night{0x16, 0x28, 0x3A};
inline constexpr QColor heroSubtitle{0x8F, 0xB8, 0xDD};
inline constexpr QColor heroAccent{0x5F, 0xA3, 0xDD};
inline constexpr QColor tintedSurface{0x3B, 0x8F, 0xD4, 20};

namespace Spacing {
inline constexpr int tight = 8;
inline constexpr int normal = 16;
inline constexpr int wide = 24;
inline constexpr int section = 32;
} // namespace Spacing

namespace Radius {
inline constexpr int control = 6;
inline constexpr int panel = 10;
} // namespace Radius

/// The colour with this opacity, from 0 to 1.
QColor withOpacity(QColor color, double opacity);

/// The desktop's font; `size` in logical pixels.
QFont font(double size, QFont::Weight weight = QFont::Normal);

/// Converts between UTF-8 and the toolkit's strings.
QString text(std::string_view utf8);
std::string utf8(const QString& text);

} // namespace querlin::Brand
