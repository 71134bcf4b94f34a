#pragma once

#include "dictation/DictationController.h"
#include "foundation/Registration.h"
#include "state/AppSettings.h"
#include "ui/overlay/ElidedLabel.h"
#include "ui/overlay/Indicator.h"
#include "ui/overlay/LevelMeter.h"
#include "ui/overlay/LiveText.h"
#include "ui/overlay/VisualEffectView.h"

#include <QLabel>

namespace querlin {

/// Renders what the controller publishes about the current dictation.
class OverlayView final : public VisualEffectView {
public:
    /// Both outlive this.
    OverlayView(const DictationController& controller, const AppSettings& settings);

    QSize sizeHint() const override;

protected:
    void changeEvent(QEvent* event) override;

private:
    void build();
    QWidget* makeStatusRow();
    void subscribe();
    void refresh();
    void refreshLiveText();
    void refreshColors();
    QColor accentColor() const;

    const DictationController& controller_;
    const AppSettings& settings_;

    Indicator* indicator_ = nullptr;
    QLabel* title_ = nullptr;
    ElidedLabel* subtitle_ = nullptr;
    QWidget* badge_ = nullptr;
    ElidedLabel* badgeText_ = nullptr;
    LevelMeter* level_ = nullptr;
    QLabel* elapsed_ = nullptr;
    QWidget* liveTextRoom_ = nullptr;
    LiveText* liveText_ = nullptr;
    std::vector<Registration> subscriptions_;
};

} // namespace querlin
