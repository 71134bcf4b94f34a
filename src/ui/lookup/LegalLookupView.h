#pragma once

#include "desktop/FocusReturn.h"
#include "dictation/DictationController.h"
#include "legal/LegalUpdateService.h"
#include "ui/lookup/EmptyPane.h"
#include "ui/lookup/LawSearch.h"
#include "ui/lookup/SearchPane.h"
#include "ui/lookup/SectionPane.h"

#include <cstdint>

#include <QStackedWidget>
#include <QWidget>

namespace querlin {

/// What the lookup window works with. All of it outlives the window. Without a controller nothing can be
/// inserted.
struct LegalLookupSources {
    Runtime runtime;
    AppSettings& settings;
    LegalCorpus& corpus;
    LegalUpdateService& updates;
    DictationController* controller = nullptr;
    FocusReturn& focusReturn;
};

/// The window in which laws are looked up, read, copied, and inserted at the cursor of another application.
class LegalLookupView final : public QWidget {
public:
    explicit LegalLookupView(LegalLookupSources sources);

protected:
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QWidget* makeRight();
    void subscribe();
    void showSelection();
    void copy(const std::string& text);
    void beginInsertion();
    Task<> insert(std::string text);
    void endInsertion();
    Task<> refreshSummary();
    void showProgress();
    void stageChanged(const LegalUpdateService::Stage& stage);

    LegalLookupSources sources_;
    LawSearch search_;
    /// Assumed until the corpus has been looked at.
    bool hasTexts_ = true;
    bool isInserting_ = false;

    SearchPane* left_ = nullptr;
    QStackedWidget* right_ = nullptr;
    EmptyPane* empty_ = nullptr;
    SectionPane* section_ = nullptr;
    std::vector<Registration> subscriptions_;
    TaskGroup tasks_; ///< last: running tasks use all members above
};

} // namespace querlin
