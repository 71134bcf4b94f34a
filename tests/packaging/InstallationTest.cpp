#include "platform/system/Installation.h"
#include "support/TempFolder.h"

#include <cstdio>
#include <sstream>

#include <gtest/gtest.h>

namespace querlin {
namespace {

namespace fs = std::filesystem;

std::string run(const std::string& command) {
    std::string output;
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    for (int character = 0; pipe && (character = std::fgetc(pipe.get())) != EOF;) output += static_cast<char>(character);
    return output;
}

/// What the probe prints in a tree.
std::string installedIn(const fs::path& prefix) {
    const auto text = prefix.string();
    return text + "/share/querlin/resources\n" + text + "/lib/querlin/querlin-recogniser\n" + text + "/lib/querlin/sherpa-onnx\n";
}

TEST(Installation, IsTheTreeAroundTheProgram) {
    const TempFolder folder;
    const auto prefix = folder / "Büro für Betreuung";
    fs::create_directories(prefix / "share/querlin/resources");
    const Installation ofBuild{.resources = "/gebaut/resources", .recogniser = "/gebaut/r", .recognitionLibraries = {}};
    struct Row {
        const char* why;
        fs::path executable;
        bool isInstalled;
    };
    const std::vector<Row> rows = {
        {"installed", prefix / "bin/querlin", true},
        {"replaced by an upgrade while it runs", prefix / "bin/querlin (deleted)", true},
        {"in a build tree", folder / "build/src/app/querlin", false},
        {"without resources around it", folder / "bin/querlin", false},
        {"not told by the system", "", false},
        {"outside of what the process may see", "(unreachable)/bin/querlin", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.why);
        const auto found = Installation::of(row.executable, ofBuild);
        EXPECT_EQ(found.resources, row.isInstalled ? prefix / "share/querlin/resources" : ofBuild.resources);
        EXPECT_EQ(found.recogniser, row.isInstalled ? prefix / "lib/querlin/querlin-recogniser" : ofBuild.recogniser);
        EXPECT_EQ(found.recognitionLibraries.size(), row.isInstalled ? 1 : 0);
    }
}

TEST(Installation, IsFoundByRealPrograms) {
    const TempFolder folder;
    const auto prefix = fs::canonical(folder.path()) / "Büro für Betreuung";
    fs::create_directories(prefix / "share/querlin/resources");
    fs::create_directories(prefix / "bin");
    fs::copy_file(QUERLIN_PROBE, prefix / "bin/querlin");
    fs::create_symlink(prefix / "bin/querlin", folder / "link");
    const auto quoted = [](const fs::path& program) { return "'" + program.string() + "'"; };

    EXPECT_EQ(run(quoted(prefix / "bin/querlin")), installedIn(prefix));
    EXPECT_EQ(run(quoted(folder / "link")), installedIn(prefix));
    EXPECT_EQ(run(quoted(folder / "link") + " gelöscht"), installedIn(prefix));
    EXPECT_FALSE(fs::exists(prefix / "bin/querlin"));

    std::istringstream ofBuild(run(quoted(QUERLIN_PROBE)));
    std::string line;
    for (const auto* place : {"resources", "src/platform/querlin-recogniser"}) {
        ASSERT_TRUE(std::getline(ofBuild, line));
        EXPECT_EQ(line, fs::path(QUERLIN_BUILD) / place);
        EXPECT_TRUE(fs::exists(line)) << line;
    }
}

} // namespace
} // namespace querlin
