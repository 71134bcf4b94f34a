#pragma once

#include "ui/lookup/CorpusProgress.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QWidget>

namespace querlin {

/// The right pane while no section is selected: how current the laws are, or the progress of their first
/// load.
class EmptyPane final : public QWidget {
public:
    /// `onLoad` is called when the user asks for the laws to be loaded.
    explicit EmptyPane(const std::function<void()>& onLoad);

    void setSummary(const std::vector<std::string>& lines);
    void setProgress(const std::optional<CorpusProgress>& progress);

private:
    void makeProgress(const std::function<void()>& onLoad);

    QScrollArea* summary_;
    QLabel* progressText_;
    QProgressBar* progressBar_;
    QPushButton* load_;
};

} // namespace querlin
