#pragma once

#include "platform/helper/server/HelperServer.h"

#include <functional>
#include <memory>

namespace querlin {

/// The main function of a helper, which speaks to the program that started it through descriptor 3. What it
/// works on is confidential: it leaves no core dump, nothing on its standard outputs, and no process of its
/// own behind.
int runHelper(const char* program,
              const std::function<std::unique_ptr<HelperService>(HelperServer& server)>& makeService);

} // namespace querlin
