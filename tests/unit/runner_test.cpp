#include <gtest/gtest.h>

#include "cli/runner.hpp"

// The silence limit ends a hung tool before a server's timeout (45 s in the
// shipped configurations) ends the gateway with it.
TEST(ToolLimits, AreThirtySecondsOfSilenceAndSixteenMiB) {
    EXPECT_EQ(tool_limits_in_force.silence_seconds, 30);
    EXPECT_EQ(tool_limits_in_force.max_output_mib, 16u);
}
