#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "cli/runner.hpp"

// Both time limits end a tool before a server's timeout (45 s in the
// shipped configurations) ends the gateway with it, so the page is
// completed: silence, and a tool that never falls silent or never exits.
TEST(ToolLimits, AreThirtySecondsOfSilenceSixteenMiBAndFortySecondsInAll) {
    EXPECT_EQ(tool_limits_in_force.silence_seconds, 30);
    EXPECT_EQ(tool_limits_in_force.max_output_mib, 16u);
    EXPECT_EQ(tool_limits_in_force.deadline_seconds, 40);
}

// The tool's environment keeps what passes, in order, up to its capacity,
// and says so when more would pass.
TEST(ToolEnvironment, KeepsWhatPassesUpToItsCapacity) {
    static char kept[] = "PATH=/bin", dropped[] = "HTTP_HOST=x";
    for (std::size_t passing : {std::size_t{3}, tool_environment::capacity, tool_environment::capacity + 1}) {
        std::vector<char*> env;
        for (std::size_t i = 0; i < passing; ++i) env.insert(env.end(), {dropped, kept});
        env.push_back(nullptr);
        static tool_environment tool_env;
        EXPECT_EQ(build_tool_environment(env.data(), tool_env), passing <= tool_environment::capacity) << passing;
        std::size_t count = 0;
        while (tool_env.entries[count] != nullptr) EXPECT_EQ(tool_env.entries[count++], kept);
        EXPECT_EQ(count, std::min(passing, tool_environment::capacity));
    }
}
