#include "ui/menu/StatusItem.h"

#include "ui/brand/Brand.h"
#include "ui/menu/TrayIcon.h"

#include <QCursor>

namespace querlin {

StatusItem::StatusItem(MenuView::Perform perform) : view_(std::move(perform)) {
    QObject::connect(&icon_, &QSystemTrayIcon::activated, &icon_,
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger) view_.menu().popup(QCursor::pos());
                     });
    icon_.setContextMenu(&view_.menu());
    setSymbol({});
    icon_.show();
    // Only an icon embedded as a window has a known position on the screen.
    protocol_ = icon_.geometry().isNull() ? TrayProtocol::statusNotifier : TrayProtocol::systemTray;
}

void StatusItem::setSymbol(std::string_view symbol) {
    icon_.setIcon(TrayIcon::make(symbol, Theme::appearance().get()));
}

void StatusItem::setToolTip(const std::string& text) { icon_.setToolTip(Brand::text(text)); }

} // namespace querlin
