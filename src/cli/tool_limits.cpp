// How long shelfctl may stay silent, how much it may print and how long it
// may run: a silent tool is ended after 30 s, an answer cut at 16 MiB, and
// a tool still running 40 s after its start is ended: before the shipped
// servers give up on the gateway (45 s), so the operator still gets the page.
#include "cli/runner.hpp"

extern const tool_limits tool_limits_in_force = {30, 16, 40};
