#include "ui/lookup/SearchPane.h"

#include "ui/brand/Brand.h"
#include "ui/brand/Symbol.h"
#include "ui/brand/Theme.h"

#include <QKeyEvent>
#include <QVBoxLayout>

namespace querlin {

SearchPane::SearchPane(LawSearch& search, std::function<void()> onRead) :
    search_(search), onRead_(std::move(onRead)) {
    makeField();
    makeResults();
    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(10, 10, 6, 8);
    stack->setSpacing(8);
    stack->addWidget(field_);
    stack->addWidget(results_, 1);
    refreshIcons();
    subscribe();
}

void SearchPane::makeField() {
    field_ = new QLineEdit;
    field_->setPlaceholderText(QStringLiteral("§ oder Stichwort, z. B. 1814 BGB"));
    field_->setAccessibleName(QStringLiteral("Suche in den Gesetzen"));
    field_->setMinimumHeight(30);
    field_->installEventFilter(this);
    glass_ = field_->addAction(QIcon(), QLineEdit::LeadingPosition);
    clear_ = field_->addAction(QIcon(), QLineEdit::TrailingPosition);
    clear_->setText(QStringLiteral("Eingabe löschen"));
    clear_->setToolTip(clear_->text());
    connect(field_, &QLineEdit::textEdited, this,
            [this](const QString& text) { search_.setQuery(Brand::utf8(text)); });
    connect(clear_, &QAction::triggered, this, [this] {
        search_.clear();
        field_->setFocus();
    });
}

void SearchPane::makeResults() {
    hits_ =
        new HitList({.onSelect = [this](std::size_t row) { search_.select(search_.hits().get().at(row)); },
                     .onOpen = [this] { onRead_(); },
                     .onLeaveUpwards = [this] { focusField(); }});
    hint_ = new QLabel;
    hint_->setTextFormat(Qt::PlainText);
    hint_->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    hint_->setContentsMargins(0, 40, 0, 0);
    hint_->setFont(Brand::font(12));
    hint_->setForegroundRole(QPalette::PlaceholderText);
    results_ = new QStackedWidget;
    results_->addWidget(hint_);
    results_->addWidget(hits_);
}

void SearchPane::subscribe() {
    const auto keep = [this](Registration subscription) {
        subscriptions_.push_back(std::move(subscription));
    };
    keep(search_.query().subscribe([this](const std::string& query) {
        const auto text = Brand::text(query);
        if (field_->text() != text) field_->setText(text);
        clear_->setVisible(!query.empty());
        showResults();
    }));
    keep(search_.searching().subscribe([this](bool) { showResults(); }));
    keep(search_.hits().subscribe([this](const std::vector<LegalHit>& hits) {
        const bool hadKeyboard = hits_->hasFocus();
        hits_->setHits(hits);
        showResults();
        if (hadKeyboard && hits.empty()) field_->setFocus();
    }));
    keep(search_.selection().subscribe([this](const std::optional<LegalHit>& hit) {
        if (hit) hits_->choose(search_.hits().get(), *hit);
    }));
}

void SearchPane::focusField() {
    field_->setFocus();
    field_->selectAll();
}

void SearchPane::showResults() {
    hint_->setText(Brand::text(search_.hint()));
    results_->setCurrentWidget(search_.hits().get().empty() ? static_cast<QWidget*>(hint_) : hits_);
}

// Keys

bool SearchPane::eventFilter(QObject* watched, QEvent* event) {
    const auto* key = event->type() == QEvent::KeyPress ? dynamic_cast<const QKeyEvent*>(event) : nullptr;
    return (watched == field_ && key != nullptr && takeKey(*key)) || QWidget::eventFilter(watched, event);
}

bool SearchPane::takeKey(const QKeyEvent& key) {
    if (key.modifiers() != Qt::NoModifier && key.modifiers() != Qt::KeypadModifier) return false;
    switch (key.key()) {
    case Qt::Key_Down:
        if (!search_.hits().get().empty()) hits_->setFocus();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        takeReturn();
        return true;
    default:
        return false;
    }
}

/// The first press searches; a second one, once there are hits, moves on to the text.
void SearchPane::takeReturn() {
    const auto& query = search_.query().get();
    if (query == confirmed_ && search_.selection().get() && !search_.searching().get()) {
        onRead_();
    } else {
        confirmed_ = query;
        search_.searchNow();
    }
}

// Appearance

void SearchPane::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange && clear_) refreshIcons();
    QWidget::changeEvent(event);
}

void SearchPane::refreshIcons() {
    glass_->setIcon(Symbol::icon("magnifyingglass", Theme::secondaryText()));
    clear_->setIcon(Symbol::icon("xmark.circle.fill", Theme::secondaryText()));
}

} // namespace querlin
