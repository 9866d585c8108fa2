// How long shelfctl may stay silent and how much it may print: a silent
// tool is ended after 30 s, an answer cut at 16 MiB.
#include "cli/runner.hpp"

extern const tool_limits tool_limits_in_force = {30, 16};
