// The tool's process: looked up on the search path, started with a pipe to
// its input and one from its output, ended and reaped.
#pragma once

#include <sys/types.h>

#include <cstdint>

#include "text/fixed_text.hpp"

using tool_path = fixed_text<4096>;

// The executable file `name` in the first directory of `search_path` (the
// value of PATH; null for none) that holds one; false when none does.
// Looked up here so that a missing tool is told apart from a failed start
// the same way natively and under emulation.
bool find_tool(const char* name, const char* search_path, tool_path& path);

struct tool_process {
    pid_t pid = 0;
    int input = -1;   // the tool's standard input
    int output = -1;  // the tool's standard output
};

// Milliseconds on the monotonic clock, for the tool's deadline.
std::int64_t monotonic_ms();

// From here on, a signal that ends the gateway (SIGTERM from a web server's
// timeout, SIGHUP, SIGINT, SIGQUIT, SIGALRM, SIGUSR1, SIGUSR2) first ends
// the running tool's process group and reaps the tool; SIGPIPE is ignored,
// so a tool that never reads its input cannot end the gateway; SIGCHLD is
// back to its default, so the tool stays a zombie until it is reaped.
void end_tool_with_gateway();

// Starts the tool at `path` in a process group of its own with the
// environment `env`; returns 0, or the error number of the failed pipe,
// process or exec. From then on SIGCHLD stays blocked in the gateway, for
// end_tool to wait on.
int start_tool(const char* path, char* const* env, tool_process& tool);

// Waits for the tool to exit, at most until `deadline_ms` (monotonic_ms);
// with `kill_first`, or when the deadline passes, ends it instead. Either
// way then kills what is left of its process group while the tool's pid is
// still held, and reaps the tool. False when the deadline passed first.
bool end_tool(tool_process& tool, bool kill_first, std::int64_t deadline_ms);
