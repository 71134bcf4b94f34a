#include "ui/menu/CommandWindow.h"

#include "ui/brand/Brand.h"
#include "ui/brand/BrandMark.h"
#include "ui/brand/Symbol.h"
#include "ui/display/BringToFront.h"
#include "ui/menu/MenuText.h"

#include <QCloseEvent>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace querlin {

namespace {

constexpr int columnWidth = 296;

QWidget* makeHead(const std::string& status, const std::string& hotkey, const std::string& symbol,
                  qreal ratio) {
    auto* head = new QWidget;
    auto* row = new QHBoxLayout(head);
    row->setContentsMargins(4, 0, 4, 4);
    row->setSpacing(12);
    auto* sign = new QLabel;
    sign->setPixmap(Symbol::pixmap(symbol, 28, Brand::primary, ratio));
    row->addWidget(sign);
    auto* lines = new QVBoxLayout;
    lines->setSpacing(2);
    for (const auto& [text, font] :
         {std::pair{status, Brand::font(13, QFont::DemiBold)}, {hotkey, Brand::font(11)}}) {
        auto* label = new QLabel(Brand::text(text));
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setFont(font);
        lines->addWidget(label);
    }
    row->addLayout(lines, 1);
    return head;
}

QWidget* makeSeparator() {
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setForegroundRole(QPalette::Mid);
    return line;
}

} // namespace

CommandWindow::CommandWindow(std::function<void(MenuCommand)> perform, Surfaces& surfaces) :
    perform_(std::move(perform)), surfaces_(surfaces) {
    setWindowTitle(Brand::text(Brand::productName));
    setWindowIcon(BrandMark::windowIcon());
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(12, 14, 12, 12);
    outer->setSizeConstraint(QLayout::SetFixedSize);
}

void CommandWindow::setEntries(const std::vector<MenuEntry>& entries, std::string_view symbol) {
    if (entries_ == entries && symbol_ == symbol) return;
    entries_ = entries;
    symbol_ = symbol;
    rebuild();
}

void CommandWindow::changeEvent(QEvent* event) {
    // Later: the buttons are about to receive the new palette and must not be destroyed yet.
    if (event->type() == QEvent::PaletteChange && column_) QTimer::singleShot(0, this, [this] { rebuild(); });
    QWidget::changeEvent(event);
}

void CommandWindow::closeEvent(QCloseEvent* /*event*/) {
    isWished_ = false;
    if (hasTray_) return;
    // Closed and reopened minimised: refusing to close would block the end of the session, which asks all
    // windows.
    QTimer::singleShot(0, this, [this] { showMinimized(); });
}

void CommandWindow::present() {
    isWished_ = true;
    if (!isVisible()) centreInFull();
    setAttribute(Qt::WA_ShowWithoutActivating, false);
    bringToFront(*this, surfaces_);
}

void CommandWindow::offer() {
    if (isVisible()) return;
    centreInFull();
    setAttribute(Qt::WA_ShowWithoutActivating);
    show();
}

void CommandWindow::centreInFull() {
    adjustSize(); // It has no size before it is shown.
    centre(*this);
}

void CommandWindow::withdraw() {
    if (!isWished_) hide();
}

/// Replaces the column of buttons and keeps the focus on the same command.
void CommandWindow::rebuild() {
    keepFocus();
    auto* former = std::exchange(column_, new QWidget);
    buttons_.clear();
    column_->setFixedWidth(columnWidth);
    stack_ = new QVBoxLayout(column_);
    stack_->setContentsMargins(0, 0, 0, 0);
    stack_->setSpacing(2);
    stack_->addWidget(makeHead(entries_.at(0).title, entries_.at(1).title, symbol_, devicePixelRatioF()));
    add({entries_.begin() + 2, entries_.end()});
    layout()->addWidget(column_);
    if (former) {
        layout()->removeWidget(former);
        former->hide();
        former->deleteLater(); // May have been called from one of its buttons.
    }
    giveFocus();
}

void CommandWindow::keepFocus() {
    const auto* focused = focusWidget();
    for (const auto& [command, button] : buttons_) {
        if (button == focused) focused_ = command;
    }
}

/// A command that is disabled now gets the focus back when it is enabled again.
void CommandWindow::giveFocus() {
    for (const auto& [command, button] : buttons_) {
        if (command == focused_) button->setFocus();
    }
}

void CommandWindow::add(const std::vector<MenuEntry>& entries) {
    for (const auto& entry : entries) {
        if (entry.isSeparator()) {
            stack_->addWidget(makeSeparator());
        } else if (!entry.submenu.empty()) {
            auto* caption = new QLabel(Brand::text(entry.title));
            caption->setFont(Brand::font(11, QFont::DemiBold));
            caption->setContentsMargins(8, 2, 0, 2);
            stack_->addWidget(caption);
            add(entry.submenu);
        } else {
            addButton(entry);
        }
    }
}

void CommandWindow::addButton(const MenuEntry& entry) {
    const auto title = Brand::text(entry.title);
    auto* button = new QPushButton(MenuText::label(entry.title));
    button->setAccessibleName(title);
    button->setFlat(true);
    button->setEnabled(entry.isEnabled);
    button->setStyleSheet(QStringLiteral("QPushButton { text-align: left; padding: 5px 8px; border: none; "
                                         "border-radius: 5px; outline: none; }"
                                         "QPushButton:hover, QPushButton:focus { background: %1; }")
                              .arg(Brand::withOpacity(Brand::primary, 0.16).name(QColor::HexArgb)));
    if (entry.key != 0) button->setShortcut(MenuText::shortcut(entry.key));
    connect(button, &QPushButton::clicked, this, [this, command = entry.command] { perform_(command); });
    stack_->addWidget(button);
    buttons_.emplace_back(entry.command, button);
}

} // namespace querlin
