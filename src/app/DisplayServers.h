#pragma once

#include "desktop/DisplayServer.h"
#include "foundation/MainQueue.h"

#include <memory>

/// The kinds of display server that the program can work with.
namespace querlin::DisplayServers {

/// Makes the one object; after the toolkit's application object.
using Maker = std::unique_ptr<DisplayServer> (*)(MainQueue&);

/// The first kind that can be reached; null if there is none.
Maker find();
/// The kind whose parts all say that nothing is there, where none can be reached.
Maker fallback();

} // namespace querlin::DisplayServers
