#pragma once

#include "desktop/Surfaces.h"

namespace querlin {

/// By the toolkit's connection, so that a request comes after what the toolkit has asked for.
class X11Surfaces final : public Surfaces {
public:
    bool areBlended() override;
    void activate(WindowNumber window) override;
};

} // namespace querlin
