#include "state/ApplicationPaths.h"

#include "state/Product.h"

#include <cstdlib>
#include <string>

#include <pwd.h>
#include <unistd.h>

namespace querlin {

namespace fs = std::filesystem;

namespace {

fs::path absoluteFromEnvironment(const char* variable) {
    const char* value = std::getenv(variable); // NOLINT(concurrency-mt-unsafe): before any thread.
    const fs::path path = value ? value : "";
    return path.is_absolute() ? path : fs::path();
}

fs::path homeFolder() {
    if (auto home = absoluteFromEnvironment("HOME"); !home.empty()) return home;
    const passwd* user = ::getpwuid(::getuid()); // NOLINT(concurrency-mt-unsafe): before any thread.
    return user && user->pw_dir ? fs::path(user->pw_dir) : fs::path("/");
}

fs::path folder(const char* variable, const fs::path& fallback) {
    auto path = absoluteFromEnvironment(variable);
    return path.empty() ? fallback : path;
}

} // namespace

fs::path ApplicationPaths::preferencesFile(std::string_view domain) const {
    return preferences / (std::string(domain) + ".json");
}

ApplicationPaths ApplicationPaths::fromEnvironment() {
    const auto home = homeFolder();
    return {
        .support = folder("XDG_DATA_HOME", home / ".local/share") / Product::name,
        .preferences = folder("XDG_CONFIG_HOME", home / ".config"),
        .log = folder("XDG_STATE_HOME", home / ".local/state") / (std::string(Product::name) + ".log"),
        .recordings = folder("XDG_CACHE_HOME", home / ".cache") / Product::name,
    };
}

} // namespace querlin
