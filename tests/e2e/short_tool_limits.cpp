// Tool limits short enough to test a silent and a flooding tool quickly.
#include "cli/runner.hpp"

extern const tool_limits tool_limits_in_force = {1, 1};
