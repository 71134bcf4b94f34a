#include "state/ApplicationPaths.h"

#include <cstdlib>

#include <gtest/gtest.h>

namespace querlin {
namespace {

TEST(ApplicationPaths, FollowTheEnvironmentWhereItMakesSense) {
    ::setenv("HOME", "/home/anna", 1);
    ::setenv("XDG_DATA_HOME", "/daten", 1);
    ::setenv("XDG_CONFIG_HOME", "relativ/zählt/nicht", 1);
    ::setenv("XDG_STATE_HOME", "", 1);
    ::unsetenv("XDG_CACHE_HOME");
    const auto paths = ApplicationPaths::fromEnvironment();
    EXPECT_EQ(paths.support, "/daten/Querlin");
    EXPECT_EQ(paths.preferencesFile("local.mandolan.querlin"), "/home/anna/.config/local.mandolan.querlin.json");
    EXPECT_EQ(paths.log, "/home/anna/.local/state/Querlin.log");
    EXPECT_EQ(paths.recordings, "/home/anna/.cache/Querlin");
    ::unsetenv("HOME");
    EXPECT_TRUE(ApplicationPaths::fromEnvironment().recordings.is_absolute()) << "the user database knows a home";
}

} // namespace
} // namespace querlin
