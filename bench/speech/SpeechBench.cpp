// What the hearing costs. Speech is espeak-ng's, the models are the starter model and, where its library is
// here, the streaming test model.

#include "Cases.h"

#include <cstdlib>

int main() {
    querlin::bench::Report report;
    querlin::bench::runAppending(report);
    querlin::bench::runRecognising(report);
    return report.hasDisagreement() ? EXIT_FAILURE : EXIT_SUCCESS;
}
