#include "ui/lookup/LegalLookupView.h"

#include "foundation/Waiting.h"
#include "ui/brand/Brand.h"
#include "ui/lookup/TwoPanes.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QVBoxLayout>

namespace querlin {

namespace {

constexpr int leftWidth = 290;
constexpr int longestLooks = 50;
constexpr auto betweenLooks = std::chrono::milliseconds(10);
constexpr std::string_view nowhereToInsert =
    "Kein anderes Fenster mit Schreibmarke gefunden – der Text liegt in der Zwischenablage.";

} // namespace

LegalLookupView::LegalLookupView(LegalLookupSources sources) :
    sources_(sources), search_(sources.runtime, sources.corpus) {
    left_ = new SearchPane(search_, [this] { section_->focusText(); });
    left_->setMinimumWidth(220);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new TwoPanes(left_, makeRight(), leftWidth));
    endInsertion();
    subscribe();
}

QWidget* LegalLookupView::makeRight() {
    empty_ = new EmptyPane([this] { sources_.updates.checkNow(); });
    const auto copyFullText = [this] { copy(LawSearch::fullText(*search_.selection().get())); };
    const auto copyCitation = [this] {
        const auto& hit = *search_.selection().get();
        copy(hit.section.citation(hit.law));
    };
    section_ = new SectionPane(
        {.copy = copyFullText, .copyCitation = copyCitation, .insert = [this] { beginInsertion(); }});
    right_ = new QStackedWidget;
    right_->setBackgroundRole(QPalette::Base); // The colour of text fields.
    right_->setAutoFillBackground(true);
    right_->addWidget(empty_);
    right_->addWidget(section_);
    return right_;
}

void LegalLookupView::subscribe() {
    const auto keep = [this](Registration subscription) {
        subscriptions_.push_back(std::move(subscription));
    };
    keep(search_.selection().subscribe([this](const auto&) { showSelection(); }));
    keep(search_.copied().subscribe([this](bool isCopied) { section_->setCopied(isCopied); }));
    keep(sources_.updates.stage.subscribe([this](const auto& stage) { stageChanged(stage); },
                                          FirstValue::Skip));
}

void LegalLookupView::showSelection() {
    const auto& hit = search_.selection().get();
    if (hit) section_->setHit(*hit);
    right_->setCurrentWidget(hit ? static_cast<QWidget*>(section_) : empty_);
}

void LegalLookupView::copy(const std::string& text) {
    section_->setMessage({});
    QGuiApplication::clipboard()->setText(Brand::text(text));
    search_.markCopied();
}

// At the cursor of another application

void LegalLookupView::beginInsertion() {
    const auto& hit = search_.selection().get();
    if (isInserting_ || !hit || !sources_.controller) return;
    isInserting_ = true;
    section_->setCanInsert(false);
    section_->setMessage({});
    tasks_.start(insert(LawSearch::fullText(*hit)));
}

/// This window has the focus: it first goes back to the window that had it before.
Task<> LegalLookupView::insert(std::string text) {
    const bool isGivenBack = co_await sources_.focusReturn.giveBack();
    // The toolkit learns of the change a moment after the window manager has confirmed it.
    for (int look = 0; isGivenBack && isActiveWindow() && look < longestLooks; ++look) {
        co_await sleepFor(sources_.runtime.mainQueue, betweenLooks);
    }
    endInsertion();
    if (isGivenBack && !isActiveWindow()) {
        sources_.controller->insertLegalText(std::move(text));
    } else {
        copy(text);
        section_->setMessage(nowhereToInsert);
    }
}

void LegalLookupView::endInsertion() {
    isInserting_ = false;
    section_->setCanInsert(sources_.controller != nullptr);
}

// The laws

void LegalLookupView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (event->spontaneous()) return; // Only restored from the minimised state.
    tasks_.start(refreshSummary());
    left_->focusField();
}

Task<> LegalLookupView::refreshSummary() {
    co_await sources_.corpus.ready();
    const auto extent = sources_.corpus.extent();
    hasTexts_ = extent && extent->sections > 0;
    empty_->setSummary(sources_.corpus.standSummary());
    showProgress();
}

void LegalLookupView::showProgress() {
    using enum CorpusProgress::Loading;
    const auto loading = sources_.settings.updateLawsAutomatically.get() ? Automatic : OnRequest;
    empty_->setProgress(CorpusProgress::of(sources_.updates.stage.get(), hasTexts_, loading));
}

void LegalLookupView::stageChanged(const LegalUpdateService::Stage& stage) {
    showProgress();
    if (!std::holds_alternative<LegalUpdateStage::Updated>(stage)) return;
    tasks_.start(refreshSummary());
    search_.textsChanged();
}

// Keys

void LegalLookupView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        close();
    } else if (event->matches(QKeySequence::Find)) {
        left_->focusField();
    } else {
        QWidget::keyPressEvent(event);
    }
}

} // namespace querlin
