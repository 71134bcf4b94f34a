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

/// The left side: the field, and what has been found.
class SearchPane final : public QWidget {
public:
    /// `onRead`: the user wants to go to the text of what is chosen.
    SearchPane(LawSearch& search, std::function<void()> onRead);

    /// The keyboard into the field, ready for another query.
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
    /// What Return was last pressed for.
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
