// Runs the built gateway as a CGI process, with the stand-in shelfctl
// first on PATH, and collects what it wrote and what the tool received.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "verb_cases.hpp"

struct gateway_request {
    std::string argv0;  // the invocation name (the verb)
    std::optional<std::string> method = "POST";  // nullopt: REQUEST_METHOD unset
    std::string body;
    std::optional<std::string> stdin_from;      // default: the body; "": standard input closed
    std::optional<std::string> content_length;  // default: the body's size (POST only)
    std::optional<std::string> tool_output;     // default: the stub's echoing answer
    std::string tool_mode = "read";
    std::optional<std::string> path;  // PATH's entries before /usr/bin:/bin; default: the stand-in's directory
    std::string cwd;                  // the gateway's working directory; default: the tests'
    int open_file_limit = 0;  // 0: unchanged
    bool no_argv0 = false;    // start with an empty argument vector
    // Called once the tool has started, with the gateway's pid and the tool's.
    std::function<void(int gateway, int tool)> while_running;
    int out_fd = -1;             // >= 0: the gateway's standard output instead of a file
    bool short_limits = false;   // the gateway built with shortened tool limits (1 s, 1 MiB)
    std::vector<std::string> extra_env;
    bool merge_stderr = false;  // standard error into the same file as the page, as some servers do
};

struct gateway_result {
    std::string out;
    std::string err;
    int status = -1;  // exit status, or 128 + signal
    std::optional<std::string> tool_input;  // nullopt: the tool never ran
    std::string tool_env;                   // the tool's environment, one entry a line
    int tool_pid = 0;
    int tool_child = 0;  // the pid of the child a forking stand-in started
};

// The directory of the stand-in shelfctl.
std::string stub_dir();
// The whole content of a file ("" when there is none).
std::string slurp(const std::string& path);
// True while the process `pid` exists.
bool process_alive(int pid);
// True once `pid` is gone or a zombie; a process just killed gets 5 s.
bool process_ends(int pid);

gateway_result run_gateway(const gateway_request& request);

// A request posting `body` to `verb`.
gateway_request post(std::string verb, std::string body);
// A GET request to `verb`.
gateway_request get(std::string verb);
