#pragma once

#include "legal/LegalLaw.h"

#include <functional>
#include <vector>

#include <QListWidget>

namespace querlin {

/// The list of hits: number and law, title, and a tag for sections that guardians need often.
class HitList final : public QListWidget {
public:
    struct Gestures {
        std::function<void(std::size_t)> onSelect; ///< index of the row that the user selects
        std::function<void()> onOpen;              ///< the user wants to read the selected section
        std::function<void()> onLeaveUpwards;
    };
    explicit HitList(Gestures gestures);

    void setHits(const std::vector<LegalHit>& hits);
    /// Without calling `onSelect`.
    void choose(const std::vector<LegalHit>& hits, const LegalHit& hit);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    Gestures gestures_;
};

} // namespace querlin
