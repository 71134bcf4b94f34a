#pragma once

#include "report/Report.h"

namespace querlin::bench {

/// How long the audio thread is held up.
void runAppending(Report& report);
/// How long a text takes, and what it needs.
void runRecognising(Report& report);

} // namespace querlin::bench
