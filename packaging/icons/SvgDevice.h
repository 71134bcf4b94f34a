#pragma once

#include <memory>

#include <QPaintDevice>
#include <QString>

namespace querlin {

/// Writes down as SVG what is painted on it: filled and stroked paths, in plain colours and linear gradients.
/// Anything else ends in `isFaithful`.
class SvgDevice final : public QPaintDevice {
public:
    /// A square picture.
    explicit SvgDevice(int size);
    ~SvgDevice() override;
    SvgDevice(const SvgDevice&) = delete;
    SvgDevice& operator=(const SvgDevice&) = delete;

    /// The whole document, once painting has ended.
    QString document() const;
    /// Whether the document has all that was painted.
    bool isFaithful() const;

    QPaintEngine* paintEngine() const override;

protected:
    int metric(PaintDeviceMetric metric) const override;

private:
    class Engine;
    int size_;
    std::unique_ptr<Engine> engine_;
};

} // namespace querlin
