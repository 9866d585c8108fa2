#include <gtest/gtest.h>

#include "cli/runner.hpp"

// Both time limits end a tool before a server's timeout (45 s in the
// shipped configurations) ends the gateway with it, so the page is
// completed: silence, and a tool that never falls silent or never exits.
TEST(ToolLimits, AreThirtySecondsOfSilenceSixteenMiBAndFortySecondsInAll) {
    EXPECT_EQ(tool_limits_in_force.silence_seconds, 30);
    EXPECT_EQ(tool_limits_in_force.max_output_mib, 16u);
    EXPECT_EQ(tool_limits_in_force.deadline_seconds, 40);
}
