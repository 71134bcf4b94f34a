#pragma once

#include "legal/LegalLaw.h"

#include <functional>
#include <vector>

#include <QListWidget>

namespace querlin {

/// The found sections, one below the other: number and law, title, and whether guardians need it often.
class HitList final : public QListWidget {
public:
    /// `onSelect` hears what the user chooses, by its place.
    explicit HitList(std::function<void(std::size_t)> onSelect);

    void setHits(const std::vector<LegalHit>& hits);
    /// Without telling anybody.
    void choose(const std::vector<LegalHit>& hits, const LegalHit& hit);

private:
    std::function<void(std::size_t)> onSelect_;
};

} // namespace querlin
