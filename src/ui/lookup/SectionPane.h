#pragma once

#include "legal/LegalLaw.h"
#include "ui/lookup/ReadingText.h"

#include <functional>
#include <optional>
#include <string_view>

#include <QLabel>
#include <QPushButton>
#include <QWidget>

namespace querlin {

/// The selected section: citation, title, path, text, and the actions.
class SectionPane final : public QWidget {
public:
    struct Actions {
        std::function<void()> copy;
        std::function<void()> copyCitation;
        std::function<void()> insert;
    };
    explicit SectionPane(const Actions& actions);

    /// A section that is already shown keeps its scroll position and selection.
    void setHit(const LegalHit& hit);
    void setCopied(bool isCopied);
    void setCanInsert(bool canInsert);
    /// The line below the actions; empty for none.
    void setMessage(std::string_view message);
    void focusText() { text_->setFocus(); }

protected:
    void changeEvent(QEvent* event) override;

private:
    void refreshIcons();

    QLabel* citation_;
    QLabel* title_;
    QLabel* path_;
    ReadingText* text_;
    QPushButton* copy_;
    QPushButton* copyCitation_;
    QPushButton* insert_;
    QLabel* message_;
    std::optional<LegalHit> shown_;
    bool isCopied_ = false;
};

} // namespace querlin
