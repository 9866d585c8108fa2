// Running one shelfctl command and copying its answer into the page.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "cli/command_text.hpp"

// Longest piece of tool output taken as one line, as a 255-byte line
// buffer reads it: a longer line arrives as several pieces.
inline constexpr std::size_t max_output_piece = 254;

inline constexpr std::string_view cant_interact_message = "Can't interact with Corvane Shelf Manager <BR>";

enum class filter_step { drop, copy, stop, cant_interact };

// Keeps the answer to the command: the lines between the tool's first
// prompt and its next one. Each piece of output is judged on its own.
class output_filter {
public:
    filter_step next(std::string_view piece);

private:
    bool copying_ = false;
};

// How long the tool may stay silent, how much it may print and how long it
// may run in all before the gateway ends it, whatever web server runs the
// gateway.
struct tool_limits {
    int silence_seconds;
    std::size_t max_output_mib;
    int deadline_seconds;  // from the tool's start to its exit
};

// 30 s, 16 MiB and 40 s (tool_limits.cpp, an object of its own in the
// library, so that a test build that defines shorter ones links those
// instead).
extern const tool_limits tool_limits_in_force;

// Why reading the tool's output ended.
enum class output_end { open, closed, silent, too_long, overdue };

// Cuts a byte stream into the pieces the filter judges: up to and including
// a line feed, at most max_output_piece bytes. Stops when the stream stays
// silent for the limit's time, has given the limit's bytes, or at
// `deadline_ms` on the monotonic clock (see monotonic_ms).
class piece_reader {
public:
    piece_reader(int fd, tool_limits limits, std::int64_t deadline_ms);
    // The next piece; false at the end of the output. A zero byte ends the
    // piece's text, as it ends a C string read by fgets.
    bool next(std::string_view& piece);
    output_end end() const { return end_; }

private:
    bool refill();

    int fd_;
    int silence_ms_;
    std::int64_t deadline_ms_;
    std::size_t max_bytes_, total_ = 0;
    output_end end_ = output_end::open;
    char buf_[4096];
    std::size_t start_ = 0, end_of_buf_ = 0;
    char piece_[max_output_piece + 1];
};

// True for the environment entries the tool is started with: all but those
// a client chooses or that describe the request (HTTP_* headers, the query,
// the body's type and length, the request's path and method).
bool passes_to_tool(std::string_view entry);

// The environment the tool starts with: the gateway's entries that pass,
// in order, ending with a null pointer. A server passes a few dozen.
struct tool_environment {
    static constexpr std::size_t capacity = 1023;
    char* entries[capacity + 1];
    std::size_t count = 0;
};

// Fills `tool_env` from the gateway's environment `env`; false when more
// entries pass than it holds.
bool build_tool_environment(char* const* env, tool_environment& tool_env);

// Starts shelfctl found on the command search path of `env` (no shell)
// with the entries of `env` that pass, sends the command text, "quit" and
// an empty line, filters the answer onto `out` and waits for the tool. The
// text must have passed command_refusal.
void run_cli_command(std::FILE* out, const command_text& command, char* const* env);
