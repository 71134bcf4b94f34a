#include "platform/system/Installation.h"

#include <system_error>

namespace querlin {

namespace fs = std::filesystem;

// The same places as in packaging/CMakeLists.txt, seen from the folder above bin.
namespace {

constexpr auto installedResources = "share/querlin/resources";
constexpr auto installedRecogniser = "lib/querlin/querlin-recogniser";
constexpr auto installedLibraries = "lib/querlin/sherpa-onnx";

} // namespace

Installation Installation::of(const fs::path& executable, const Installation& ofBuild) {
    const auto prefix = executable.parent_path().parent_path();
    std::error_code failure;
    if (!executable.is_absolute() || !fs::is_directory(prefix / installedResources, failure)) return ofBuild;
    return {.resources = prefix / installedResources,
            .recogniser = prefix / installedRecogniser,
            .recognitionLibraries = {prefix / installedLibraries}};
}

Installation Installation::ofThisProgram() {
    std::error_code failure;
    return of(fs::read_symlink("/proc/self/exe", failure),
              {.resources = QUERLIN_RESOURCES_OF_BUILD,
               .recogniser = QUERLIN_RECOGNISER_OF_BUILD,
               .recognitionLibraries = {QUERLIN_SHERPA_OF_BUILD}});
}

} // namespace querlin
