#pragma once

#include "support/DictationWorld.h"
#include "support/FakePortal.h"
#include "support/QtApplication.h"

#include "foundation/Waiting.h"
#include "platform/x11/toolkit/X11Surfaces.h"
#include "ui/brand/Brand.h"
#include "ui/windows/WindowCoordinator.h"

#include <string>
#include <vector>

#include <QWidget>

namespace querlin {

/// Takes its time, as a window manager does.
class SlowFocusReturn final : public FocusReturn {
public:
    explicit SlowFocusReturn(MainQueue& queue) : queue_(queue) {}
    Task<bool> giveBack() override {
        ++wishes;
        co_await sleepFor(queue_, seconds(0.1));
        if (isThere && window) window->hide(); // Another one has the focus now.
        co_return isThere;
    }
    int wishes = 0;
    bool isThere = true;
    QWidget* window = nullptr;

private:
    MainQueue& queue_;
};

/// All windows over a scripted controller, on virtual time; in memory where there is no display.
struct WindowsWorld {
    WindowsWorld() { windows.setController(&world.controller); }
    ~WindowsWorld() { windows.setController(nullptr); }
    WindowsWorld(const WindowsWorld&) = delete;
    WindowsWorld& operator=(const WindowsWorld&) = delete;

    /// Those that can be seen.
    static std::vector<QWidget*> windowsNamed(const std::string& title) {
        std::vector<QWidget*> found;
        for (auto* window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && window->windowTitle() == Brand::text(title)) found.push_back(window);
        }
        return found;
    }
    static QWidget* windowNamed(const std::string& title) {
        const auto found = windowsNamed(title);
        return found.empty() ? nullptr : found.front();
    }

    QApplication& application = qtApplication(); // Before all windows.
    DictationWorld world;
    FakePortal portal{world.time};
    LegalCorpusStore laws{world.folder.path() / "Gesetze", world.folder.path()};
    LegalCorpus corpus{laws, world.time.runtime()};
    LegalUpdateService updates{world.settings, laws, corpus, portal, world.time.runtime()};
    SlowFocusReturn focusReturn{world.time};
    X11Surfaces surfaces;
    std::vector<SetupFinding> findings = {{.name = "Mikrofon", .state = "da", .isFine = true}};
    WindowCoordinator windows{{.runtime = world.time.runtime(),
                               .settings = world.settings,
                               .statistics = world.statistics,
                               .legalUpdates = updates,
                               .corpus = corpus,
                               .focusReturn = focusReturn,
                               .surfaces = surfaces,
                               .findings = [this] { return findings; }}};
};

} // namespace querlin
