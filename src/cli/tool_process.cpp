#include "cli/tool_process.hpp"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string_view>

extern char** environ;

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

namespace {

constexpr int ending_signals[] = {SIGTERM, SIGHUP, SIGINT, SIGQUIT, SIGALRM, SIGUSR1, SIGUSR2};

// The running tool, for the signal handler.
volatile pid_t running_tool = 0;

void wait_for(pid_t pid) {
    while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
}

void end_tool_and_exit(int sig) {
    pid_t tool = running_tool;
    if (tool > 0) {
        kill(tool, SIGKILL);
        wait_for(tool);
    }
    _exit(128 + sig);
}

// Every request resolves each C library function it calls once, so the
// signal sets are built here rather than with sigemptyset and sigaddset:
// on Linux the empty set is all zero bits.
sigset_t no_signals() { return sigset_t{}; }

// Puts `fd` at `target` without the close-on-exec flag.
void move_fd(int fd, int target) {
    if (fd == target) {
        fcntl(fd, F_SETFD, 0);
    } else {
        dup2(fd, target);
    }
}

// The child between vfork and exec: it shares the gateway's memory, so it
// only resets what the tool must not inherit and reports a failed exec.
[[noreturn]] void become_tool(const char* path, int input, int output, int exec_error) {
    struct sigaction defaults = {};
    defaults.sa_handler = SIG_DFL;
    sigaction(SIGPIPE, &defaults, nullptr);
    for (int sig : ending_signals) sigaction(sig, &defaults, nullptr);
    sigset_t none = no_signals();
    sigprocmask(SIG_SETMASK, &none, nullptr);
    move_fd(input, STDIN_FILENO);
    move_fd(output, STDOUT_FILENO);
    char argv0[] = "shelfctl";
    char* argv[] = {argv0, nullptr};
    execve(path, argv, environ);
    int err = errno;
    ssize_t ignored = write(exec_error, &err, sizeof err);
    (void)ignored;
    _exit(127);
}

void close_pipe(const int fds[2]) {
    close(fds[0]);
    close(fds[1]);
}

}  // namespace

void end_tool_with_gateway() {
    struct sigaction ignore = {};
    ignore.sa_handler = SIG_IGN;
    ignore.sa_mask = no_signals();
    sigaction(SIGPIPE, &ignore, nullptr);
    // A second ending signal during the handler only repeats its work.
    struct sigaction ending = {};
    ending.sa_handler = end_tool_and_exit;
    ending.sa_mask = no_signals();
    for (int sig : ending_signals) sigaction(sig, &ending, nullptr);
}

int start_tool(const char* path, tool_process& tool) {
    // To the tool's input, from its output, and the child's word on a
    // failed exec; all close-on-exec.
    int pipes[3][2];
    for (int i = 0; i < 3; ++i) {
        if (pipe2(pipes[i], O_CLOEXEC) != 0) {
            int err = errno;
            while (i-- > 0) close_pipe(pipes[i]);
            return err;
        }
    }
    auto& [to_tool, from_tool, exec_error] = pipes;
    // No handler may run in the child while it shares our memory, and an
    // ending signal must find the tool's pid already known.
    sigset_t all, before;
    sigfillset(&all);
    sigprocmask(SIG_SETMASK, &all, &before);
    pid_t pid = vfork();
    if (pid == 0) become_tool(path, to_tool[0], from_tool[1], exec_error[1]);
    int err = pid < 0 ? errno : 0;
    if (pid > 0) running_tool = pid;
    sigprocmask(SIG_SETMASK, &before, nullptr);
    close(to_tool[0]);
    close(from_tool[1]);
    close(exec_error[1]);
    if (pid > 0) {
        // Nothing to read once the exec closed the pipe; an errno otherwise.
        int exec_err = 0;
        ssize_t got;
        while ((got = read(exec_error[0], &exec_err, sizeof exec_err)) < 0 && errno == EINTR) {
        }
        if (got == sizeof exec_err) {
            err = exec_err;
            wait_for(pid);
            running_tool = 0;
        }
    }
    close(exec_error[0]);
    if (err != 0) {
        close(to_tool[1]);
        close(from_tool[0]);
        return err;
    }
    tool = {pid, to_tool[1], from_tool[0]};
    return 0;
}

void reap_tool(tool_process& tool, bool kill_first) {
    if (kill_first) kill(tool.pid, SIGKILL);
    wait_for(tool.pid);
    running_tool = 0;
}
