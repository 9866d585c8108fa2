// Running one shelfctl command and copying its answer into the page.
#pragma once

#include <cstddef>
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

// Cuts a byte stream into the pieces the filter judges: up to and including
// a line feed, at most max_output_piece bytes.
class piece_reader {
public:
    explicit piece_reader(int fd) : fd_(fd) {}
    // The next piece; false at end of output. A zero byte ends the piece's
    // text, as it ends a C string read by fgets.
    bool next(std::string_view& piece);

private:
    int fd_;
    char buf_[4096];
    std::size_t start_ = 0, end_ = 0;
    char piece_[max_output_piece + 1];
};

// Starts shelfctl found on the command search path (no shell), sends the
// command text, "quit" and an empty line, filters the answer onto `out` and
// waits for the tool. The text must have passed command_refusal.
void run_cli_command(std::FILE* out, const command_text& command);
