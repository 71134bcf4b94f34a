#include "ui/lookup/LegalLookupView.h"

#include "foundation/Waiting.h"
#include "ui/brand/Brand.h"
#include "ui/brand/Symbol.h"
#include "ui/brand/Theme.h"

#include <algorithm>

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QSplitter>
#include <QVBoxLayout>

namespace querlin {

namespace {

constexpr int leftWidth = 300;
constexpr std::string_view nowhereToInsert =
    "Kein anderes Fenster mit Schreibmarke gefunden – der Text liegt in der Zwischenablage.";

/// What the empty pane tells of the laws.
struct Summary {
    std::vector<std::string> lines;
    bool hasTexts = false;
};

Summary summaryOf(LegalCorpus& corpus) {
    Summary summary{.lines = corpus.standSummary()};
    summary.hasTexts = std::ranges::any_of(corpus.laws(), [](const LegalLaw& law) { return !law.sections.empty(); });
    return summary;
}

} // namespace

LegalLookupView::LegalLookupView(LegalLookupSources sources) :
    with_(sources), search_(sources.runtime, sources.corpus) {
    auto* panes = new QSplitter;
    panes->setChildrenCollapsible(false);
    panes->addWidget(makeLeft());
    panes->addWidget(makeRight());
    panes->setStretchFactor(1, 1);
    panes->setSizes({leftWidth, leftWidth + leftWidth});
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(panes);
    refreshIcons();
    subscribe();
    field_->setFocus();
}

QWidget* LegalLookupView::makeLeft() {
    field_ = new QLineEdit;
    field_->setPlaceholderText(QStringLiteral("§ oder Stichwort, z. B. 1814 BGB"));
    field_->setAccessibleName(QStringLiteral("Suche in den Gesetzen"));
    field_->setMinimumHeight(30);
    field_->installEventFilter(this);
    glass_ = field_->addAction(QIcon(), QLineEdit::LeadingPosition);
    clear_ = field_->addAction(QIcon(), QLineEdit::TrailingPosition);
    clear_->setToolTip(QStringLiteral("Eingabe löschen"));
    connect(field_, &QLineEdit::textEdited, this, [this](const QString& text) { search_.setQuery(Brand::utf8(text)); });
    connect(clear_, &QAction::triggered, this, [this] { search_.clear(); });

    hits_ = new HitList([this](std::size_t row) { search_.select(search_.hits().get().at(row)); });
    hint_ = new QLabel;
    hint_->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    hint_->setContentsMargins(0, 40, 0, 0);
    hint_->setFont(Brand::font(12));
    hint_->setForegroundRole(QPalette::PlaceholderText);
    left_ = new QStackedWidget;
    left_->addWidget(hint_);
    left_->addWidget(hits_);

    auto* pane = new QWidget;
    pane->setMinimumWidth(220);
    auto* stack = new QVBoxLayout(pane);
    stack->setContentsMargins(10, 10, 4, 10);
    stack->addWidget(field_);
    stack->addWidget(left_, 1);
    return pane;
}

QWidget* LegalLookupView::makeRight() {
    empty_ = new EmptyPane;
    section_ = new SectionPane({.copy = [this] { copy(LawSearch::fullText(*search_.selection().get())); },
                                .copyCitation =
                                    [this] {
                                        const auto& hit = *search_.selection().get();
                                        QGuiApplication::clipboard()->setText(Brand::text(hit.section.citation(hit.law)));
                                    },
                                .insert =
                                    [this] {
                                        if (!isInserting_) tasks_.start(insert());
                                    }});
    section_->setCanInsert(with_.controller != nullptr);
    right_ = new QStackedWidget;
    right_->addWidget(empty_);
    right_->addWidget(section_);
    return right_;
}

void LegalLookupView::subscribe() {
    const auto keep = [this](Registration subscription) { subscriptions_.push_back(std::move(subscription)); };
    keep(search_.query().subscribe([this](const std::string& query) {
        const auto text = Brand::text(query);
        if (field_->text() != text) field_->setText(text);
        clear_->setVisible(!query.empty());
        showHits();
    }));
    keep(search_.searching().subscribe([this](bool) { showHits(); }));
    keep(search_.hits().subscribe([this](const std::vector<LegalHit>& hits) {
        hits_->setHits(hits);
        showHits();
    }));
    keep(search_.selection().subscribe([this](const auto&) { showSelection(); }));
    keep(search_.copied().subscribe([this](bool isCopied) { section_->setCopied(isCopied); }));
    keep(with_.updates.stage.subscribe([this](const auto& stage) { stageChanged(stage); }));
}

void LegalLookupView::showHits() {
    hint_->setText(Brand::text(search_.hint()));
    left_->setCurrentWidget(search_.hits().get().empty() ? static_cast<QWidget*>(hint_) : hits_);
}

void LegalLookupView::showSelection() {
    const auto& hit = search_.selection().get();
    if (hit) {
        section_->setHit(*hit);
        hits_->choose(search_.hits().get(), *hit);
    }
    right_->setCurrentWidget(hit ? static_cast<QWidget*>(section_) : empty_);
}

void LegalLookupView::copy(const std::string& text) {
    QGuiApplication::clipboard()->setText(Brand::text(text));
    search_.markCopied();
}

/// This window has the keyboard: the one from before gets it back first.
Task<> LegalLookupView::insert() {
    const auto& hit = search_.selection().get();
    if (!hit || !with_.controller) co_return;
    isInserting_ = true;
    auto text = LawSearch::fullText(*hit);
    const bool isGivenBack = co_await with_.focusReturn.giveBack();
    // The toolkit hears of it a moment later than the window manager's word of it.
    for (int look = 0; isGivenBack && isActiveWindow() && look < 50; ++look) {
        co_await sleepFor(with_.runtime.mainQueue, std::chrono::milliseconds(10));
    }
    isInserting_ = false;
    if (isGivenBack && !isActiveWindow()) {
        with_.controller->insertLegalText(std::move(text));
    } else {
        copy(text);
        section_->setMessage(std::string(nowhereToInsert));
    }
}

// The laws

void LegalLookupView::showEvent(QShowEvent* /*event*/) {
    with_.corpus.preload(with_.runtime.background);
    tasks_.start(refreshSummary());
}

/// In the background: it may have to load them.
Task<> LegalLookupView::refreshSummary() {
    auto summarise = [&corpus = with_.corpus] { return summaryOf(corpus); };
    const auto summary = co_await background(with_.runtime, std::move(summarise));
    hasTexts_ = summary.hasTexts;
    empty_->setSummary(summary.lines);
    empty_->setProgress(CorpusProgress::of(with_.updates.stage.get(), hasTexts_));
}

void LegalLookupView::stageChanged(const LegalUpdateService::Stage& stage) {
    empty_->setProgress(CorpusProgress::of(stage, hasTexts_));
    if (!std::holds_alternative<LegalUpdateStage::Updated>(stage)) return;
    tasks_.start(refreshSummary());
    if (!search_.query().get().empty()) search_.searchNow();
}

// Keys

void LegalLookupView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        close();
    } else if (event->matches(QKeySequence::Find)) {
        field_->setFocus();
        field_->selectAll();
    } else {
        QWidget::keyPressEvent(event);
    }
}

/// From the field the arrow goes down into the list, and Return searches; once more, it goes to the text.
bool LegalLookupView::eventFilter(QObject* watched, QEvent* event) {
    if (watched != field_ || event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() == Qt::Key_Down && left_->currentWidget() == hits_) {
        hits_->setFocus();
        return true;
    }
    if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) && key->modifiers() == Qt::NoModifier) {
        if (search_.searching().get() || !search_.selection().get()) {
            search_.searchNow();
        } else {
            section_->focusText();
        }
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

// Looks

void LegalLookupView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange && clear_) refreshIcons();
    QWidget::changeEvent(event);
}

void LegalLookupView::refreshIcons() {
    glass_->setIcon(Symbol::icon("magnifyingglass", Theme::secondaryText()));
    clear_->setIcon(Symbol::icon("xmark.circle.fill", Theme::secondaryText()));
}

} // namespace querlin
