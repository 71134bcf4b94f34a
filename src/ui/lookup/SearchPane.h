#pragma once

#include "ui/lookup/HitList.h"
#include "ui/lookup/LawSearch.h"

#include <functional>
#include <vector>

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QStackedWidget>
#include <QWidget>

namespace querlin {

/// The left pane: the search field and the hits.
class SearchPane final : public QWidget {
public:
    /// `onRead` is called when the user wants to read the selected section.
    SearchPane(LawSearch& search, std::function<void()> onRead);

    /// Gives the field the focus and selects its content.
    void focusField();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void makeField();
    void makeResults();
    void subscribe();
    bool takeKey(const QKeyEvent& key);
    void takeReturn();
    void showResults();
    void refreshIcons();

    LawSearch& search_;
    std::function<void()> onRead_;
    /// The query for which Return was last pressed.
    std::string confirmed_;

    QLineEdit* field_ = nullptr;
    QAction* glass_ = nullptr;
    QAction* clear_ = nullptr;
    QStackedWidget* results_ = nullptr;
    HitList* hits_ = nullptr;
    QLabel* hint_ = nullptr;
    std::vector<Registration> subscriptions_;
};

} // namespace querlin
