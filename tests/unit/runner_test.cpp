#include <gtest/gtest.h>

#include "cli/runner.hpp"

// The silence limit ends a hung tool before a server's timeout (45 s in the
// shipped configurations) ends the gateway with it; the deadline ends a
// tool that never falls silent, or never exits, where no server does.
TEST(ToolLimits, AreThirtySecondsOfSilenceSixteenMiBAndSixtySecondsInAll) {
    EXPECT_EQ(tool_limits_in_force.silence_seconds, 30);
    EXPECT_EQ(tool_limits_in_force.max_output_mib, 16u);
    EXPECT_EQ(tool_limits_in_force.deadline_seconds, 60);
}
