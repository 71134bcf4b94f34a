#pragma once

#include "legal/LegalLaw.h"

#include <functional>
#include <vector>

#include <QListWidget>

namespace querlin {

/// The found sections, one below the other: number and law, title, and whether guardians need it often.
class HitList final : public QListWidget {
public:
    struct Gestures {
        std::function<void(std::size_t)> onSelect; ///< what the user chooses, by its place
        std::function<void()> onOpen;              ///< wants to read what is chosen
        std::function<void()> onLeaveUpwards;
    };
    explicit HitList(Gestures gestures);

    void setHits(const std::vector<LegalHit>& hits);
    /// Without telling anybody.
    void choose(const std::vector<LegalHit>& hits, const LegalHit& hit);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    Gestures gestures_;
};

} // namespace querlin
