#pragma once

#include "legal/LegalLaw.h"

#include <functional>

#include <QLabel>
#include <QPushButton>
#include <QTextEdit>
#include <QWidget>

namespace querlin {

/// The chosen section: citation, title, where it stands, its text, and what can be done with it.
class SectionPane final : public QWidget {
public:
    struct Actions {
        std::function<void()> copy;
        std::function<void()> copyCitation;
        std::function<void()> insert;
    };
    explicit SectionPane(const Actions& actions);

    void setHit(const LegalHit& hit);
    void setCopied(bool isCopied);
    void setCanInsert(bool canInsert);
    /// A line below the actions; empty for none.
    void setMessage(const std::string& message);
    void focusText() { text_->setFocus(); }

protected:
    void changeEvent(QEvent* event) override;

private:
    void refreshIcons();

    QLabel* citation_;
    QLabel* title_;
    QLabel* path_;
    QTextEdit* text_;
    QPushButton* copy_;
    QPushButton* copyCitation_;
    QPushButton* insert_;
    QLabel* message_;
    bool isCopied_ = false;
};

} // namespace querlin
