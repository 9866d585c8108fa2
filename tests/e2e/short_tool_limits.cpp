// Tool limits short enough to test a silent, a flooding and an overdue tool
// quickly; the deadline stays well past the silence limit.
#include "cli/runner.hpp"

extern const tool_limits tool_limits_in_force = {1, 1, 3};
