#include "ui/brand/Symbol.h"

#include "ui/brand/Theme.h"

#include <algorithm>
#include <array>

#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>

namespace querlin::Symbol {

namespace {

/// All symbols are drawn on a square of this side.
constexpr double grid = 24;
constexpr double lineWidth = 1.8;

/// Lines of one width, and filled areas.
struct Shape {
    QPainterPath lines;
    QPainterPath areas;

    Shape& line(std::initializer_list<QPointF> points) {
        lines.moveTo(*points.begin());
        std::for_each(points.begin() + 1, points.end(), [this](QPointF point) { lines.lineTo(point); });
        return *this;
    }
    Shape& circle(QPointF centre, double radius) {
        lines.addEllipse(centre, radius, radius);
        return *this;
    }
    Shape& dot(QPointF centre, double radius) {
        areas.addEllipse(centre, radius, radius);
        return *this;
    }
    Shape& box(const QRectF& rect, double radius) {
        lines.addRoundedRect(rect, radius, radius);
        return *this;
    }
};

/// Holder, stem and foot of the microphone.
void addMicrophoneStand(Shape& shape) {
    shape.lines.moveTo(5.5, 11.5);
    shape.lines.arcTo(QRectF(5.5, 5, 13, 13), 180, 180);
    shape.line({{12, 18}, {12, 21.5}}).line({{8.5, 21.5}, {15.5, 21.5}});
}

Shape microphone() {
    Shape shape;
    shape.box(QRectF(9, 2.5, 6, 12), 3);
    addMicrophoneStand(shape);
    return shape;
}

Shape filledMicrophone() {
    Shape shape;
    shape.areas.addRoundedRect(QRectF(8.4, 2, 7.2, 13), 3.6, 3.6);
    addMicrophoneStand(shape);
    return shape;
}

Shape waveform() {
    Shape shape;
    double x = 3;
    for (const double half : {1.5, 5.0, 8.5, 4.0, 9.0, 5.5, 2.0}) {
        shape.line({{x, 12 - half}, {x, 12 + half}});
        x += 3;
    }
    return shape;
}

/// A star of four points with hollow sides.
void addSparkle(Shape& shape, QPointF centre, double radius) {
    const auto x = centre.x();
    const auto y = centre.y();
    const double waist = radius * 0.16;
    auto& path = shape.areas;
    path.moveTo(x, y - radius);
    path.quadTo(x + waist, y - waist, x + radius, y);
    path.quadTo(x + waist, y + waist, x, y + radius);
    path.quadTo(x - waist, y + waist, x - radius, y);
    path.quadTo(x - waist, y - waist, x, y - radius);
}

Shape sparkles() {
    Shape shape;
    addSparkle(shape, {9.5, 13.5}, 8);
    addSparkle(shape, {18.5, 5.5}, 4);
    addSparkle(shape, {19, 19}, 2.8);
    return shape;
}

Shape textCursor() {
    Shape shape;
    shape.line({{12, 5}, {12, 19}});
    for (const double y : {3.0, 21.0}) {
        const double inner = y < 12 ? 5 : 19;
        shape.lines.moveTo(8, y);
        shape.lines.quadTo(12, y, 12, inner);
        shape.lines.quadTo(12, y, 16, y);
    }
    return shape;
}

Shape infoCircle() {
    Shape shape;
    return shape.circle({12, 12}, 9).line({{12, 11}, {12, 16.5}}).dot({12, 7.6}, 1.25);
}

Shape warningTriangle() {
    Shape shape;
    shape.line({{12, 3.2}, {21.8, 20.3}, {2.2, 20.3}});
    shape.lines.closeSubpath();
    return shape.line({{12, 9.5}, {12, 14.3}}).dot({12, 17.3}, 1.2);
}

/// A closed book from the front.
Shape closedBook() {
    Shape shape;
    shape.line({{19, 17}, {19, 4}});
    shape.lines.quadTo(19, 2.8, 17.8, 2.8);
    shape.lines.lineTo(7, 2.8);
    shape.lines.quadTo(5, 2.8, 5, 4.8);
    shape.lines.lineTo(5, 19);
    shape.lines.quadTo(5, 21.2, 7, 21.2);
    shape.lines.lineTo(19, 21.2);
    shape.lines.moveTo(5, 19);
    shape.lines.quadTo(5, 17, 7, 17);
    shape.lines.lineTo(19, 17);
    shape.lines.moveTo(19, 17);
    shape.lines.lineTo(19, 21.2);
    return shape;
}

Shape dictionary() {
    auto shape = closedBook();
    return shape.line({{9, 14}, {12, 6.5}, {15, 14}}).line({{10.1, 11.4}, {13.9, 11.4}});
}

Shape lawBook() {
    auto shape = closedBook();
    return shape.line({{9, 7.5}, {15.2, 7.5}}).line({{9, 11.5}, {13, 11.5}});
}

Shape rightArrow() {
    Shape shape;
    return shape.line({{4, 12}, {20, 12}}).line({{14, 6}, {20, 12}, {14, 18}});
}

/// A disc with a cross cut out of it.
Shape crossedDisc() {
    Shape shape;
    QPainterPath cross;
    cross.moveTo(8.6, 8.6);
    cross.lineTo(15.4, 15.4);
    cross.moveTo(15.4, 8.6);
    cross.lineTo(8.6, 15.4);
    QPainterPathStroker pen;
    pen.setWidth(lineWidth);
    pen.setCapStyle(Qt::RoundCap);
    QPainterPath disc;
    disc.addEllipse(QPointF(12, 12), 9.5, 9.5);
    shape.areas = disc.subtracted(pen.createStroke(cross).simplified());
    return shape;
}

Shape magnifier() {
    Shape shape;
    return shape.circle({10.2, 10.2}, 6.7).line({{15.2, 15.2}, {21, 21}});
}

Shape twoSheets() {
    Shape shape;
    shape.box(QRectF(8.5, 7.5, 12.5, 14), 2);
    shape.lines.moveTo(15.5, 4.6);
    shape.lines.quadTo(15.5, 2.5, 13.4, 2.5);
    shape.lines.lineTo(5, 2.5);
    shape.lines.quadTo(3, 2.5, 3, 4.5);
    shape.lines.lineTo(3, 14.6);
    shape.lines.quadTo(3, 16.5, 5, 16.5);
    return shape;
}

Shape checkmark() {
    Shape shape;
    return shape.line({{4.5, 12.8}, {9.7, 18.2}, {19.7, 5.8}});
}

/// German opening quotation marks: „
Shape openingQuote() {
    Shape shape;
    for (const double x : {7.2, 16.0}) {
        shape.dot({x, 9.6}, 2.9);
        auto& path = shape.areas;
        path.moveTo(x + 2.9, 9.4);
        path.cubicTo(x + 3.1, 13, x + 1.2, 15.8, x - 2.2, 17);
        path.lineTo(x - 2.7, 15.6);
        path.cubicTo(x - 0.6, 14.6, x + 0.4, 13, x + 0.3, 11.4);
        path.closeSubpath();
    }
    shape.areas.setFillRule(Qt::WindingFill);
    return shape;
}

struct Row {
    std::string_view name;
    Shape (*make)();
};
constexpr std::array<Row, 15> symbols{{
    {"arrow.right", rightArrow},
    {"character.book.closed", dictionary},
    {"checkmark", checkmark},
    {"doc.on.doc", twoSheets},
    {"exclamationmark.triangle", warningTriangle},
    {"info.circle", infoCircle},
    {"magnifyingglass", magnifier},
    {"mic", microphone},
    {"mic.fill", filledMicrophone},
    {"quote.opening", openingQuote},
    {"sparkles", sparkles},
    {"text.book.closed", lawBook},
    {"text.cursor", textCursor},
    {"waveform", waveform},
    {"xmark.circle.fill", crossedDisc},
}};

constexpr auto symbolNames = [] {
    std::array<std::string_view, symbols.size()> names{};
    std::ranges::transform(symbols, names.begin(), &Row::name);
    return names;
}();

} // namespace

std::span<const std::string_view> names() { return symbolNames; }

void draw(QPainter& painter, std::string_view name, const QRectF& rect, const QColor& color) {
    const auto* const row = std::ranges::find(symbols, name, &Row::name);
    if (row == symbols.end()) return;
    const auto shape = row->make();
    const double scale = std::min(rect.width(), rect.height()) / grid;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect.center());
    painter.scale(scale, scale);
    painter.translate(-grid / 2, -grid / 2);
    painter.fillPath(shape.areas, color);
    painter.strokePath(shape.lines, QPen(color, lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.restore();
}

QPixmap pixmap(std::string_view name, int size, const QColor& color, qreal devicePixelRatio) {
    const int pixels = qRound(size * devicePixelRatio);
    QPixmap picture(pixels, pixels);
    picture.setDevicePixelRatio(devicePixelRatio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    draw(painter, name, QRectF(0, 0, size, size), color);
    return picture;
}

QIcon icon(std::string_view name) { return icon(name, Theme::primaryText()); }

QIcon icon(std::string_view name, const QColor& color) {
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48}) icon.addPixmap(pixmap(name, size, color));
    return icon;
}

} // namespace querlin::Symbol
