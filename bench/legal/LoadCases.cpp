#include "BenchRuntime.h"
#include "Cases.h"
#include "Child.h"
#include "WorkFolder.h"
#include "report/Measuring.h"

#include "foundation/Files.h"
#include "foundation/Release.h"
#include "legal/LegalCorpus.h"

#include <array>
#include <cstring>
#include <memory>
#include <span>
#include <stdexcept>

#include <fmt/format.h>
#include <libdeflate.h>
#include <sys/mman.h>

namespace querlin::bench {

namespace {

/// Pages that nobody has touched yet.
class FreshMemory {
public:
    explicit FreshMemory(std::size_t bytes) :
        bytes_(bytes),
        start_(::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
        if (start_ == MAP_FAILED) throw std::bad_alloc(); // NOLINT: the system's macro
    }
    ~FreshMemory() { ::munmap(start_, bytes_); }
    FreshMemory(const FreshMemory&) = delete;
    FreshMemory& operator=(const FreshMemory&) = delete;

    std::span<char> bytes() const { return {static_cast<char*>(start_), bytes_}; }

private:
    std::size_t bytes_;
    void* start_;
};

void inflateBare(std::string_view container, std::span<char> document) {
    constexpr std::size_t lengthBytes = 8;
    container.remove_prefix(lengthBytes);
    const std::unique_ptr<libdeflate_decompressor, Release<libdeflate_free_decompressor>> decompressor(
        libdeflate_alloc_decompressor());
    if (libdeflate_deflate_decompress(decompressor.get(), container.data(), container.size(), document.data(),
                                      document.size(), nullptr) != LIBDEFLATE_SUCCESS)
        throw std::runtime_error("libdeflate");
}

void coldLoadAndMemory(const Setting& setting, const std::filesystem::path& folder) {
    auto& report = setting.report;
    std::vector<double> peaks;
    std::vector<double> emptyPeaks;
    std::vector<double> plainPeaks;
    const auto run = [&](ChildWork work, std::vector<double>& peakList) {
        const auto result = runChild(work, folder);
        peakList.push_back(static_cast<double>(result.peakInBytes));
        const auto& corpus = setting.corpus;
        if (work != ChildWork::nothing &&
            (result.sections != corpus.sectionCount() || result.textBytes != corpus.textBytes()))
            report.disagreement(fmt::format("a child loaded {} sections", result.sections));
        return result.seconds;
    };
    const auto [ours, peer, nothing] = interleavedMedians(
        setting.repetitions(15), [&] { return run(ChildWork::loadOurs, peaks); },
        [&] { return run(ChildWork::loadPlainly, plainPeaks); },
        [&] { return run(ChildWork::nothing, emptyPeaks); });
    report.section("Loading");
    report.times("1 cold load | zlib, nlohmann, ICU", ours, peer, Bar::atLeast(8));

    const auto length = static_cast<double>(setting.corpus.document.size());
    const auto inMegabytes = [](double bytes) { return fmt::format("{:.1f} MB", bytes / 1e6); };
    const auto peak = median(peaks) - median(emptyPeaks);
    const auto plainPeak = median(plainPeaks) - median(emptyPeaks);
    report.row("3 peak memory of it | size of the JSON", inMegabytes(peak), inMegabytes(length),
               peak / length, Bar::atMost(3));
    report.row("  peak memory of the peer | size of the JSON", inMegabytes(plainPeak), inMegabytes(length),
               plainPeak / length, {});
}

void warmLoad(const Setting& setting, const std::filesystem::path& folder) {
    const auto& container = setting.corpus.container;
    const auto length = setting.corpus.document.size();
    const LegalCorpusStore store(folder / "Gesetze", folder);
    BenchRuntime runtime;
    std::string reused(length, '\0');
    const auto [ours, fresh, allocated, warm] = interleavedMedians(
        setting.repetitions(25),
        [&] {
            LegalCorpus corpus(store, runtime);
            return secondsOf([&] { return corpus.loadIfNeeded(); });
        },
        [&] {
            return secondsOf([&] {
                auto memory = std::make_unique<FreshMemory>(length);
                inflateBare(container, memory->bytes());
                return memory;
            });
        },
        [&] {
            return secondsOf([&] {
                auto memory = std::make_unique_for_overwrite<char[]>(length); // NOLINT: bytes without a value
                inflateBare(container, {memory.get(), length});
                return memory;
            });
        },
        [&] {
            return secondsOf([&] {
                inflateBare(container, reused);
                return 0;
            });
        });
    if (reused != setting.corpus.document)
        setting.report.disagreement("the bare inflate gives another document");
    auto& report = setting.report;
    const auto also = [&](std::string_view place, double seconds) {
        report.row(fmt::format("  warm load | ... {}", place), inWords(ours), inWords(seconds),
                   ours / seconds, {});
    };
    report.times("2 warm load | bare inflate into untouched pages", ours, fresh, Bar::atMost(2.5));
    also("into a new allocation", allocated);
    also("into one warm buffer", warm);
}

} // namespace

void runLoadCases(const Setting& setting) {
    const WorkFolder folder;
    const auto file = folder.path() / LegalCorpusStore::corpusName;
    if (!Files::writeAtomically(file, setting.corpus.container))
        throw std::runtime_error("The corpus can't be written.");
    coldLoadAndMemory(setting, folder.path());
    warmLoad(setting, folder.path());
}

} // namespace querlin::bench
