#pragma once

#include "desktop/FocusReturn.h"
#include "dictation/DictationController.h"
#include "legal/LegalUpdateService.h"
#include "ui/lookup/EmptyPane.h"
#include "ui/lookup/HitList.h"
#include "ui/lookup/LawSearch.h"
#include "ui/lookup/SectionPane.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QStackedWidget>
#include <QWidget>

namespace querlin {

/// What the lookup window works with; all of it outlives the window, but for the controller, which may be none.
struct LegalLookupSources {
    Runtime runtime;
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
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QWidget* makeLeft();
    QWidget* makeRight();
    void subscribe();
    void showHits();
    void showSelection();
    void refreshIcons();
    void copy(const std::string& text);
    Task<> insert();
    Task<> refreshSummary();
    void stageChanged(const LegalUpdateService::Stage& stage);

    LegalLookupSources with_;
    LawSearch search_;
    bool hasTexts_ = true;
    bool isInserting_ = false;

    QLineEdit* field_ = nullptr;
    QAction* glass_ = nullptr;
    QAction* clear_ = nullptr;
    QStackedWidget* left_ = nullptr;
    HitList* hits_ = nullptr;
    QLabel* hint_ = nullptr;
    QStackedWidget* right_ = nullptr;
    EmptyPane* empty_ = nullptr;
    SectionPane* section_ = nullptr;
    std::vector<Registration> subscriptions_;
    TaskGroup tasks_; ///< last: what still runs uses all of the above
};

} // namespace querlin
