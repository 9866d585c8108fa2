// The interactive loop of shelfctl: banner, prompt, one answer per command
// line, until "quit" or the end of input.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace shelfsim {

struct SessionConfig {
    std::string state_path;   // the shared state file
    bool offline = false;     // answer as if the shelf manager were unreachable
};

// Reads commands from in, writes banner, prompts and answers to out.
// Returns the exit status (0).
int run_session(std::FILE* in, std::FILE* out, const SessionConfig& cfg);

// Answers one command line against the state file: locks it, reads it (or
// starts from the defaults), answers, writes it back when changed, unlocks.
std::string run_command(std::string_view line, const SessionConfig& cfg);

}  // namespace shelfsim
