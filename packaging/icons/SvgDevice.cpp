#include "SvgDevice.h"

#include <QLinearGradient>
#include <QPaintEngine>
#include <QPainterPath>
#include <QPen>

namespace querlin {

namespace {

QString number(double value) { return QString::number(value, 'g', 6); }

QString pathData(const QPainterPath& path) {
    QString data;
    for (int i = 0; i < path.elementCount(); ++i) {
        const auto element = path.elementAt(i);
        if (element.isMoveTo()) data += QLatin1Char('M');
        if (element.isLineTo()) data += QLatin1Char('L');
        if (element.isCurveTo()) data += QLatin1Char('C');
        if (element.type == QPainterPath::CurveToDataElement) data += QLatin1Char(' ');
        data += number(element.x) + QLatin1Char(' ') + number(element.y);
    }
    return data;
}

QString stops(const QGradient& gradient) {
    QString text;
    for (const auto& [place, color] : gradient.stops())
        text += QStringLiteral(R"(<stop offset="%1" stop-color="%2"/>)").arg(number(place), color.name());
    return text;
}

} // namespace

class SvgDevice::Engine final : public QPaintEngine {
public:
    Engine() : QPaintEngine(AllFeatures) {}

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState&) override {} // `state` is queried when something is drawn.
    Type type() const override { return User; }

    void drawPath(const QPainterPath& path) override {
        const auto fill = paint(state->brush());
        const auto pen = state->pen();
        QString stroke;
        if (pen.style() != Qt::NoPen) {
            isFaithful_ = isFaithful_ && pen.style() == Qt::SolidLine && pen.capStyle() == Qt::RoundCap;
            stroke = QStringLiteral(R"( stroke="%1" stroke-width="%2" stroke-linecap="round")")
                         .arg(paint(pen.brush()), number(pen.widthF()));
        }
        const auto rule =
            path.fillRule() == Qt::OddEvenFill ? QStringLiteral(R"( fill-rule="evenodd")") : QString();
        isFaithful_ = isFaithful_ && state->transform().type() <= QTransform::TxTranslate;
        body_ += QStringLiteral("  <path fill=\"%1\"%2%3 d=\"%4\"/>\n")
                     .arg(fill, rule, stroke, pathData(state->transform().map(path)));
    }
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override { isFaithful_ = false; }
    void drawPolygon(const QPointF*, int, PolygonDrawMode) override { isFaithful_ = false; }

    const QString& body() const { return body_; }
    bool isFaithful() const { return isFaithful_; }

private:
    /// The value of an attribute that stands for the brush.
    QString paint(const QBrush& brush) {
        if (brush.style() == Qt::NoBrush) return QStringLiteral("none");
        if (brush.style() == Qt::LinearGradientPattern) return gradient(brush);
        isFaithful_ = isFaithful_ && brush.style() == Qt::SolidPattern && brush.color().alpha() == 255;
        return brush.color().name();
    }
    QString gradient(const QBrush& brush) {
        // NOLINTNEXTLINE(*-static-cast-downcast): the pattern says what it is; there are no virtual functions
        const auto& gradient = *static_cast<const QLinearGradient*>(brush.gradient());
        const auto name = QStringLiteral("gradient%1").arg(++gradients_);
        body_ +=
            QStringLiteral(
                R"(  <linearGradient id="%1" gradientUnits="userSpaceOnUse" x1="%2" y1="%3" x2="%4" y2="%5">)")
                .arg(name, number(gradient.start().x()), number(gradient.start().y()),
                     number(gradient.finalStop().x()), number(gradient.finalStop().y())) +
            stops(gradient) + QStringLiteral("</linearGradient>\n");
        return QStringLiteral("url(#%1)").arg(name);
    }

    QString body_;
    int gradients_ = 0;
    bool isFaithful_ = true;
};

SvgDevice::SvgDevice(int size) : size_(size), engine_(std::make_unique<Engine>()) {}
SvgDevice::~SvgDevice() = default;

QString SvgDevice::document() const {
    return QStringLiteral(
               "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%1\" height=\"%1\" viewBox=\"0 0 %1 %1\">\n"
               "%2</svg>\n")
        .arg(QString::number(size_), engine_->body());
}

bool SvgDevice::isFaithful() const { return engine_->isFaithful(); }

QPaintEngine* SvgDevice::paintEngine() const { return engine_.get(); }

int SvgDevice::metric(PaintDeviceMetric metric) const {
    switch (metric) {
    case PdmWidth:
    case PdmHeight:
        return size_;
    case PdmDepth:
        return 32;
    case PdmDpiX:
    case PdmDpiY:
    case PdmPhysicalDpiX:
    case PdmPhysicalDpiY:
        return 96;
    case PdmDevicePixelRatio:
        return 1;
    default:
        return QPaintDevice::metric(metric);
    }
}

} // namespace querlin
