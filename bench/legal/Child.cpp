#include "Child.h"

#include "BenchRuntime.h"
#include "PlainCorpus.h"
#include "report/Measuring.h"

#include "legal/LegalCorpus.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>

#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace querlin::bench {

namespace {

constexpr auto names =
    std::to_array<std::pair<std::string_view, ChildWork>>({{"--child-nothing", ChildWork::nothing},
                                                           {"--child-ours", ChildWork::loadOurs},
                                                           {"--child-plain", ChildWork::loadPlainly}});

std::size_t peakInBytes() {
    constexpr std::string_view key = "VmHWM:";
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(key)) return std::stoul(line.substr(key.size())) * 1024;
    }
    return 0;
}

void loadOurs(const std::filesystem::path& folder, ChildResult& result) {
    const LegalCorpusStore store(folder / "Gesetze", folder);
    BenchRuntime runtime;
    LegalCorpus corpus(store, runtime);
    const Stopwatch stopwatch;
    corpus.loadIfNeeded();
    result.seconds = stopwatch.seconds();
    result.peakInBytes = peakInBytes();
    for (const auto& law : corpus.laws()) {
        result.sections += law.sections.size();
        for (const auto& section : law.sections) result.textBytes += section.text.view().size();
    }
}

void loadPlainly(const std::filesystem::path& folder, ChildResult& result) {
    const Stopwatch stopwatch;
    const auto corpus = PlainCorpus::load(folder / LegalCorpusStore::corpusName);
    result.seconds = stopwatch.seconds();
    result.peakInBytes = peakInBytes();
    for (const auto& law : corpus.laws) {
        result.sections += law.sections.size();
        for (const auto& section : law.sections) result.textBytes += section.text.size();
    }
}

} // namespace

std::optional<ChildWork> childWork(std::string_view argument) {
    for (const auto& [name, work] : names) {
        if (name == argument) return work;
    }
    return std::nullopt;
}

void beChild(ChildWork work, const std::filesystem::path& folder) {
    ChildResult result;
    if (work == ChildWork::loadOurs) {
        loadOurs(folder, result);
    } else if (work == ChildWork::loadPlainly) {
        loadPlainly(folder, result);
    } else {
        result.peakInBytes = peakInBytes();
    }
    fmt::print("{} {} {} {}\n", result.seconds, result.peakInBytes, result.sections, result.textBytes);
}

ChildResult runChild(ChildWork work, const std::filesystem::path& folder) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) throw std::runtime_error("pipe");
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    ::posix_spawn_file_actions_addclose(&actions, ends[0]);
    auto program = std::filesystem::read_symlink("/proc/self/exe").string();
    std::string name(std::ranges::find(names, work, &std::pair<std::string_view, ChildWork>::second)->first);
    auto where = folder.string();
    const std::array<char*, 4> arguments{program.data(), name.data(), where.data(), nullptr};
    pid_t child = 0;
    const auto failure =
        ::posix_spawn(&child, program.c_str(), &actions, nullptr, arguments.data(), ::environ);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    if (failure != 0) throw std::runtime_error("posix_spawn");
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> output(::fdopen(ends[0], "r"), &std::fclose);
    ChildResult result;
    const auto count =
        std::fscanf(output.get(), "%lf %zu %zu %zu", &result.seconds, &result.peakInBytes, // NOLINT
                    &result.sections, &result.textBytes);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (count != 4 || status != 0) throw std::runtime_error("The child failed.");
    return result;
}

} // namespace querlin::bench
