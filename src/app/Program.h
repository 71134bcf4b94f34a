#pragma once

#include "app/Machine.h"
#include "dictation/DictationController.h"
#include "foundation/Lifetime.h"
#include "legal/LegalUpdateService.h"
#include "platform/dbus/ApplicationService.h"
#include "platform/dbus/ColorScheme.h"
#include "ui/menu/StatusItemController.h"
#include "ui/windows/WindowCoordinator.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace querlin {

/// Where the program lies and where it writes.
struct Places {
    std::string executable;
    std::filesystem::path resources;
    ApplicationPaths paths;
};

/// Makes the long-lived objects once, in the order that counts, and holds them to the end of the process.
/// There is no second launch and no reload. Main thread.
class Program {
public:
    /// `quit` ends the main loop.
    Program(Machine& machine, Places places, std::function<void()> quit);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void start();
    /// Rescues what is under way.
    void end();

private:
    struct Dictation;

    void makeStatusItem();
    void preload();
    void startListening();
    void later(Duration delay, Work work);
    void reportTroubles();
    void report(const std::string& title, const std::string& trouble);
    std::vector<SetupFinding> findings();

    Machine& machine_;
    const Places places_;
    const std::function<void()> quit_;

    std::unique_ptr<PreferencesStore> preferences_;
    std::unique_ptr<AppSettings> settings_;
    std::unique_ptr<UsageStatistics> statistics_;
    LegalCorpusStore lawFiles_;
    LegalCorpus corpus_;
    VocabularyProvider vocabulary_;
    PermissionsManager permissions_;
    std::unique_ptr<LegalUpdateService> legalUpdates_;
    std::unique_ptr<WindowCoordinator> windows_;
    /// The controller and whom it works with.
    std::unique_ptr<Dictation> dictation_;
    std::unique_ptr<StatusItemController> statusItemController_;
    ApplicationService attention_;
    ColorScheme colors_;
    std::vector<Registration> delayed_;
    std::vector<Registration> troubles_;
    Registration flushing_;
    Lifetime lifetime_;
};

} // namespace querlin
