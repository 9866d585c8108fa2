#include "cli/runner.hpp"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

extern char** environ;

std::string_view command_refusal(const command_text& command) {
    if (command.has_line_break()) return "A value may not contain a line break<BR>";
    if (command.overflowed() || command.view().size() > max_sendable_command)
        return "The command is too long to send<BR>";
    return {};
}

filter_step output_filter::next(std::string_view piece) {
    if (!copying_) {
        if (piece.starts_with("CLI>")) copying_ = true;
        return filter_step::drop;
    }
    if (piece.starts_with("can't interact with")) return filter_step::cant_interact;
    if (piece.starts_with("CLI>") || piece.starts_with("Last item obtained")) return filter_step::stop;
    return filter_step::copy;
}

bool piece_reader::next(std::string_view& piece) {
    std::size_t len = 0;
    while (len < max_output_piece) {
        if (start_ == end_) {
            ssize_t got = read(fd_, buf_, sizeof buf_);
            if (got < 0 && errno == EINTR) continue;
            if (got <= 0) break;
            start_ = 0;
            end_ = static_cast<std::size_t>(got);
        }
        char c = buf_[start_++];
        piece_[len++] = c;
        if (c == '\n') break;
    }
    piece_[len] = '\0';
    piece = {piece_, std::strlen(piece_)};
    return len > 0;
}

namespace {

// The running tool, so that a gateway ended by its web server (SIGTERM,
// after the server's CGI timeout) ends and reaps the tool before it exits.
volatile pid_t running_tool = 0;

void end_tool_and_exit(int) {
    pid_t tool = running_tool;
    if (tool > 0) {
        kill(tool, SIGKILL);
        while (waitpid(tool, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    _exit(128 + SIGTERM);
}

// The tool's file on the command search path, looked up here rather than by
// posix_spawnp so that a missing tool is told apart from a failed start the
// same way everywhere (an emulated spawn cannot report exec failures).
using tool_path = fixed_text<4096>;

bool find_tool(const char* name, tool_path& path) {
    const char* search = std::getenv("PATH");
    std::string_view dirs = search != nullptr ? search : "/bin:/usr/bin";
    while (true) {
        std::size_t colon = dirs.find(':');
        std::string_view dir(dirs.data(), colon == std::string_view::npos ? dirs.size() : colon);
        path.clear();
        path.append(dir.empty() ? "." : dir);
        path.append("/");
        path.append(name);
        struct stat info;
        if (!path.overflowed() && stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
            (info.st_mode & 0111) != 0)
            return true;
        if (colon == std::string_view::npos) return false;
        dirs.remove_prefix(colon + 1);
    }
}

void close_pipe(int fds[2]) {
    close(fds[0]);
    close(fds[1]);
}

// Starts the tool with its standard input and output on pipes; returns 0
// or the error number.
int start_tool(int to_tool[2], int from_tool[2], pid_t& pid) {
    static constexpr char tool_name[] = "shelfctl";
    tool_path path;
    if (!find_tool(tool_name, path)) return ENOENT;
    if (pipe2(to_tool, O_CLOEXEC) != 0) return errno;
    if (pipe2(from_tool, O_CLOEXEC) != 0) {
        int err = errno;
        close_pipe(to_tool);
        return err;
    }
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attr;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, to_tool[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, from_tool[1], STDOUT_FILENO);
    // The gateway ignores SIGPIPE; the tool gets the default back.
    posix_spawnattr_init(&attr);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    sigaddset(&defaults, SIGTERM);
    posix_spawnattr_setsigdefault(&attr, &defaults);
    sigset_t no_signals;
    sigemptyset(&no_signals);
    posix_spawnattr_setsigmask(&attr, &no_signals);
    posix_spawnattr_setflags(&attr, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    char argv0[] = "shelfctl";
    char* argv[] = {argv0, nullptr};
    int err = posix_spawn(&pid, path.c_str(), &actions, &attr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attr);
    close(to_tool[0]);
    close(from_tool[1]);
    if (err != 0) {
        close(to_tool[1]);
        close(from_tool[0]);
    }
    return err;
}

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

}  // namespace

void run_cli_command(std::FILE* out, const command_text& command) {
    signal(SIGPIPE, SIG_IGN);
    signal(SIGTERM, end_tool_and_exit);
    // SIGTERM waits until the tool's pid is known to the handler.
    sigset_t term, before;
    sigemptyset(&term);
    sigaddset(&term, SIGTERM);
    sigprocmask(SIG_BLOCK, &term, &before);
    int to_tool[2], from_tool[2];
    pid_t pid = 0;
    int err = start_tool(to_tool, from_tool, pid);
    if (err == 0) running_tool = pid;
    sigprocmask(SIG_SETMASK, &before, nullptr);
    if (err == ENOENT) {  // what a shell would have said
        std::fputs("verbgw: shelfctl: not found\n", stderr);
        return;
    }
    if (err != 0) {
        std::fprintf(out, "Error, %d\n", -err);
        return;
    }
    send_command(to_tool[1], command);

    piece_reader reader(from_tool[0]);
    output_filter filter;
    std::string_view piece;
    while (reader.next(piece)) {
        filter_step step = filter.next(piece);
        if (step == filter_step::copy) {
            std::fwrite(piece.data(), 1, piece.size(), out);
        } else if (step == filter_step::cant_interact) {
            std::fwrite(cant_interact_message.data(), 1, cant_interact_message.size(), out);
            break;
        } else if (step == filter_step::stop) {
            break;
        }
    }
    // Whatever the tool still prints is not read: closing our end makes a
    // tool that goes on printing stop instead of blocking on a full pipe.
    close(from_tool[0]);
    while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
    running_tool = 0;
}
