#pragma once

#include "ui/overlay/VisualEffectView.h"

#include <cstdint>

#include <QPixmap>
#include <QRect>
#include <QWidget>

namespace querlin {

/// A small window above all others, at the bottom of the screen on which the mouse is. It comes without
/// taking the focus from whoever has it, and is as large as its content wishes, growing upwards.
class FloatingPanel : public QWidget {
public:
    enum class Behaviour : std::uint8_t {
        /// Never has the focus, clicks go through to what is behind, full-screen windows stay below.
        onlyShows,
        /// Can be clicked on, and has the keyboard then.
        asks
    };

    /// Takes the content over. `title` is for lists of windows and screen readers.
    FloatingPanel(VisualEffectView* content, Behaviour behaviour, const QString& title);

    /// Chooses screen and place anew.
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

    VisualEffectView* content_;
    QRect screenArea_;
    /// Around the content, for the shadow.
    int margin_ = 0;
    QPixmap shadow_;
};

} // namespace querlin
