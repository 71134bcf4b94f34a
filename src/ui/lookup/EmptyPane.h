#pragma once

#include "ui/lookup/CorpusProgress.h"

#include <optional>
#include <string>
#include <vector>

#include <QLabel>
#include <QProgressBar>
#include <QWidget>

namespace querlin {

/// The right side while no section is chosen: how current the laws are, or how far their first load has come.
class EmptyPane final : public QWidget {
public:
    EmptyPane();

    void setSummary(const std::vector<std::string>& lines);
    void setProgress(const std::optional<CorpusProgress>& progress);

private:
    QLabel* summary_;
    QLabel* progressText_;
    QProgressBar* progressBar_;
};

} // namespace querlin
