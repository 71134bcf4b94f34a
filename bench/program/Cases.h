#pragma once

#include "Figures.h"

namespace querlin::bench {

/// From the start of the process to the first dot of its symbol in the tray, beside the least program that
/// has one.
void runLaunching(Figures& figures);
/// What the program takes while nobody dictates: memory with the laws, and computing time.
void runResting(Figures& figures);
/// From the hold key to the overlay.
void runShowing(Figures& figures);

} // namespace querlin::bench
