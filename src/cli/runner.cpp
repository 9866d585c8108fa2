#include "cli/runner.hpp"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "cli/tool_process.hpp"
#include "form/form_vars.hpp"

filter_step output_filter::next(std::string_view piece) {
    if (!copying_) {
        if (piece.starts_with("CLI>")) copying_ = true;
        return filter_step::drop;
    }
    if (piece.starts_with("can't interact with")) return filter_step::cant_interact;
    if (piece.starts_with("CLI>") || piece.starts_with("Last item obtained")) return filter_step::stop;
    return filter_step::copy;
}

piece_reader::piece_reader(int fd, tool_limits limits, std::int64_t deadline_ms)
    : fd_(fd),
      silence_ms_(limits.silence_seconds * 1000),
      deadline_ms_(deadline_ms),
      max_bytes_(limits.max_output_mib << 20) {}

bool piece_reader::refill() {
    if (end_ != output_end::open) return false;
    if (total_ == max_bytes_) {
        end_ = output_end::too_long;
        return false;
    }
    // The silence limit, or the time left when the deadline comes first.
    std::int64_t left = deadline_ms_ - monotonic_ms();
    int wait_ms = left >= silence_ms_ ? silence_ms_ : left > 0 ? static_cast<int>(left) : 0;
    pollfd ready = {fd_, POLLIN, 0};
    int polled;
    while ((polled = poll(&ready, 1, wait_ms)) < 0 && errno == EINTR) {
    }
    if (polled == 0) {
        end_ = wait_ms < silence_ms_ ? output_end::overdue : output_end::silent;
        return false;
    }
    std::size_t room = max_bytes_ - total_ < sizeof buf_ ? max_bytes_ - total_ : sizeof buf_;
    ssize_t got;
    while ((got = read(fd_, buf_, room)) < 0 && errno == EINTR) {
    }
    if (got <= 0) {
        end_ = output_end::closed;
        return false;
    }
    start_ = 0;
    end_of_buf_ = static_cast<std::size_t>(got);
    total_ += end_of_buf_;
    return true;
}

bool piece_reader::next(std::string_view& piece) {
    std::size_t len = 0;
    while (len < max_output_piece) {
        if (start_ == end_of_buf_ && !refill()) break;
        char c = buf_[start_++];
        piece_[len++] = c;
        if (c == '\n') break;
    }
    piece_[len] = '\0';
    piece = {piece_, std::strlen(piece_)};
    return len > 0;
}

bool passes_to_tool(std::string_view entry) {
    static constexpr std::string_view request_only[] = {
        "QUERY_STRING", "CONTENT_TYPE", "CONTENT_LENGTH", "PATH_INFO", "PATH_TRANSLATED", "REQUEST_URI",
        "REQUEST_METHOD"};
    if (entry.starts_with("HTTP_")) return false;
    std::string_view name = entry.substr(0, entry.find('='));
    for (std::string_view dropped : request_only) {
        if (name == dropped) return false;
    }
    return true;
}

bool build_tool_environment(char* const* env, tool_environment& tool_env) {
    tool_env.count = 0;
    for (char* const* entry = env; entry != nullptr && *entry != nullptr; ++entry) {
        if (!passes_to_tool(*entry)) continue;
        if (tool_env.count == tool_environment::capacity) {
            tool_env.entries[tool_env.count] = nullptr;
            return false;
        }
        tool_env.entries[tool_env.count++] = *entry;
    }
    tool_env.entries[tool_env.count] = nullptr;
    return true;
}

namespace {

void send_command(int fd, const command_text& command) {
    // At most 236 bytes: one write into an empty pipe never blocks.
    fixed_text<max_sendable_command + 16> input;
    input.append(command.view());
    input.append("\nquit\n\n");
    std::size_t done = 0;
    while (done < input.size()) {
        ssize_t put = write(fd, input.c_str() + done, input.size() - done);
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) break;  // the tool did not read its input
        done += static_cast<std::size_t>(put);
    }
    close(fd);
}

// Copies the answer onto the page; stops at the filter's word or at the
// end of the output, whichever comes first.
void copy_answer(piece_reader& reader, std::FILE* out) {
    output_filter filter;
    std::string_view piece;
    while (reader.next(piece)) {
        filter_step step = filter.next(piece);
        if (step == filter_step::copy) {
            std::fwrite(piece.data(), 1, piece.size(), out);
        } else if (step == filter_step::cant_interact) {
            std::fwrite(cant_interact_message.data(), 1, cant_interact_message.size(), out);
            return;
        } else if (step == filter_step::stop) {
            return;
        }
    }
}

}  // namespace

void run_cli_command(std::FILE* out, const command_text& command, char* const* env) {
    // What the page has so far goes out before anything the tool, or the
    // lookup, may print on standard error, which some servers put into the
    // response.
    std::fflush(out);
    end_tool_with_gateway();
    tool_path path;
    if (!find_tool("shelfctl", environment_value(env, "PATH"), path)) {  // what a shell would have said
        std::fputs("verbgw: shelfctl: not found\n", stderr);
        return;
    }
    tool_environment tool_env;
    tool_process tool;
    int err = build_tool_environment(env, tool_env) ? start_tool(path.c_str(), tool_env.entries, tool) : E2BIG;
    if (err != 0) {
        std::fprintf(out, "Error, %d\n", -err);
        return;
    }
    const tool_limits limits = tool_limits_in_force;
    const std::int64_t deadline_ms = monotonic_ms() + std::int64_t{limits.deadline_seconds} * 1000;
    send_command(tool.input, command);
    piece_reader reader(tool.output, limits, deadline_ms);
    copy_answer(reader, out);
    // Whatever the tool still prints is not read: closing our end makes a
    // tool that goes on printing stop instead of blocking on a full pipe.
    close(tool.output);
    output_end end = reader.end();
    if (!end_tool(tool, end != output_end::open && end != output_end::closed, deadline_ms))
        end = output_end::overdue;
    if (end == output_end::silent) {
        std::fprintf(stderr, "verbgw: shelfctl gave no output for %d s; ended\n", limits.silence_seconds);
    } else if (end == output_end::too_long) {
        std::fprintf(stderr, "verbgw: shelfctl's answer reached %zu MiB; ended\n", limits.max_output_mib);
    } else if (end == output_end::overdue) {
        std::fprintf(stderr, "verbgw: shelfctl ran past %d s; ended\n", limits.deadline_seconds);
    }
}
