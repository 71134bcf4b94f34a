#pragma once

#include "ui/menu/MenuView.h"
#include "ui/menu/TrayHosts.h"

#include <string>
#include <string_view>
#include <vector>

#include <QSystemTrayIcon>

namespace querlin {

/// The icon in the tray with its menu. Made once and kept: the toolkit registers it again with a restarted
/// panel. Main thread.
class StatusItem {
public:
    /// To be made only when an icon is allowed: the toolkit chooses its tray protocol now, for good.
    explicit StatusItem(MenuView::Perform perform);
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;

    TrayProtocol protocol() const { return protocol_; }

    /// The symbol of this name, or the brand mark if it is empty, in the colours of the current appearance.
    void setSymbol(std::string_view symbol);
    void setToolTip(const std::string& text);
    void setEntries(const std::vector<MenuEntry>& entries) { view_.setEntries(entries); }

private:
    MenuView view_;
    QSystemTrayIcon icon_;
    TrayProtocol protocol_ = TrayProtocol::systemTray;
};

} // namespace querlin
