#include "support/Desktop.h"

#include <gtest/gtest.h>

namespace querlin {
namespace {

TEST(Placeholder, RunsInADesktopOfItsOwn) { EXPECT_TRUE(isInVirtualDesktop()); }

} // namespace
} // namespace querlin
