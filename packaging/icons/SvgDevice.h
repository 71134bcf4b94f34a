#pragma once

#include <memory>

#include <QPaintDevice>
#include <QString>

namespace querlin {

/// Records what is painted on it as SVG: filled and stroked paths, in plain colours and linear gradients.
/// Anything else makes `isFaithful` false.
class SvgDevice final : public QPaintDevice {
public:
    /// Makes a square image.
    explicit SvgDevice(int size);
    ~SvgDevice() override;
    SvgDevice(const SvgDevice&) = delete;
    SvgDevice& operator=(const SvgDevice&) = delete;

    /// The document, once painting has ended.
    QString document() const;
    /// Whether the document contains everything that was painted.
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
