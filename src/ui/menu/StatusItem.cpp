#include "ui/menu/StatusItem.h"

#include "ui/brand/Brand.h"
#include "ui/brand/BrandMark.h"
#include "ui/brand/Symbol.h"

#include <QApplication>
#include <QCursor>
#include <QPainter>

namespace querlin {

namespace {

/// Seen on panels of either appearance, which trays don't tell.
constexpr QColor trayColor(0x5F, 0xA3, 0xDD);

QIcon trayIcon(std::string_view symbol) {
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64}) {
        QPixmap picture(size, size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        if (symbol.empty()) {
            BrandMark::draw(painter, QRectF(0, 0, size, size), trayColor, BrandMark::SectionSign::with);
        } else {
            Symbol::draw(painter, symbol, QRectF(0, 0, size, size), trayColor);
        }
        painter.end();
        icon.addPixmap(picture);
    }
    return icon;
}

} // namespace

StatusItem::StatusItem(std::function<void(MenuCommand)> perform) : perform_(std::move(perform)) {
    QObject::connect(&icon_, &QSystemTrayIcon::activated, &icon_,
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger && menu_) menu_->popup(QCursor::pos());
                     });
    setSymbol({});
    icon_.show();
}

void StatusItem::setSymbol(std::string_view symbol) { icon_.setIcon(trayIcon(symbol)); }

void StatusItem::setToolTip(const std::string& text) { icon_.setToolTip(Brand::text(text)); }

void StatusItem::setMenu(const std::vector<MenuEntry>& entries) {
    auto menu = std::make_unique<QMenu>();
    fill(*menu, entries);
    icon_.setContextMenu(menu.get());
    std::swap(menu_, menu);
    if (!menu) return;
    // One that is open goes when the user is done with it.
    auto* former = menu.release();
    if (former->isVisible()) {
        QObject::connect(former, &QMenu::aboutToHide, former, &QObject::deleteLater);
    } else {
        former->deleteLater();
    }
}

void StatusItem::fill(QMenu& menu, const std::vector<MenuEntry>& entries) {
    for (const auto& entry : entries) {
        if (entry.isSeparator()) {
            menu.addSeparator();
        } else if (!entry.submenu.empty()) {
            fill(*menu.addMenu(Brand::text(entry.title).replace(u'&', QStringLiteral("&&"))), entry.submenu);
        } else {
            auto* action = menu.addAction(Brand::text(entry.title).replace(u'&', QStringLiteral("&&")));
            action->setEnabled(entry.isEnabled);
            if (entry.key != 0)
                action->setShortcut(
                    QKeySequence(QStringLiteral("Ctrl+") + QChar::fromLatin1(entry.key).toUpper()));
            QObject::connect(action, &QAction::triggered, action,
                             [this, command = entry.command] { perform_(command); });
        }
    }
}

} // namespace querlin
