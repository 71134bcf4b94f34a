#pragma once

#include "ui/menu/MenuView.h"
#include "ui/menu/TrayHosts.h"

#include <string>
#include <string_view>
#include <vector>

#include <QSystemTrayIcon>

namespace querlin {

/// The icon in the tray with its menu. Made once and kept: a panel that is started anew gets it again by the
/// toolkit. Main thread.
class StatusItem {
public:
    /// Only where an icon is allowed: the toolkit decides now, and for good, how it speaks with trays.
    explicit StatusItem(MenuView::Perform perform);
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;

    TrayProtocol protocol() const { return protocol_; }

    /// The brand mark for no symbol, else the symbol of this name; in the colours of the present appearance.
    void setSymbol(std::string_view symbol);
    void setToolTip(const std::string& text);
    void setEntries(const std::vector<MenuEntry>& entries) { view_.setEntries(entries); }

private:
    MenuView view_;
    QSystemTrayIcon icon_;
    TrayProtocol protocol_ = TrayProtocol::systemTray;
};

} // namespace querlin
