#pragma once

#include "desktop/Surfaces.h"
#include "ui/overlay/VisualEffectView.h"

#include <cstdint>

#include <QPixmap>
#include <QRect>
#include <QWidget>

namespace querlin {

/// A small window above all others, at the bottom of the screen with the mouse. It appears without taking
/// the focus, and follows the preferred size of its content, growing upwards.
class FloatingPanel : public QWidget {
public:
    enum class Behaviour : std::uint8_t {
        /// Never has the focus; clicks go through to the window behind; above full-screen windows too.
        onlyShows,
        /// Accepts clicks, and has the focus after one.
        asks
    };

    /// Takes ownership of the content. `title` is for window lists and screen readers.
    FloatingPanel(VisualEffectView* content, Behaviour behaviour, const QString& title, Surfaces& surfaces);

    /// Chooses screen and position anew.
    void positionAtBottomCenter();
    void orderFront();
    void orderOut() { hide(); }
    VisualEffectView* content() const { return content_; }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void place();
    void adaptToCompositor();
    const QPixmap& shadow();

    Surfaces& surfaces_;
    VisualEffectView* content_;
    QRect screenArea_;
    /// Space around the content for the shadow.
    int margin_ = 0;
    QPixmap shadow_;
};

} // namespace querlin
