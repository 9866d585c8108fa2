#include "cli/tool_process.hpp"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

bool find_tool(const char* name, const char* search_path, tool_path& path) {
    std::string_view dirs = search_path != nullptr ? search_path : "/bin:/usr/bin";
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

// Every C library function a request calls costs it a symbol lookup in the
// dynamic loader; these three, which the request path needs only for the
// tool's group and deadline, share the one `syscall` instead.
void kill_group(pid_t leader) { syscall(SYS_kill, -leader, SIGKILL); }
void lead_own_group() { syscall(SYS_setpgid, 0, 0); }

void wait_for(pid_t pid) {
    while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
}

void end_tool_and_exit(int sig) {
    pid_t tool = running_tool;
    if (tool > 0) {
        kill_group(tool);  // the tool leads its own group (become_tool)
        wait_for(tool);
    }
    _exit(128 + sig);
}

// Every request resolves each C library function it calls once, so the
// signal sets are built here rather than with sigemptyset and sigaddset:
// on Linux a set is the kernel's mask, signal n at bit n - 1 of its first
// words, and the empty set is all zero bits.
sigset_t no_signals() { return sigset_t{}; }

// Every bit set, which sigfillset would also give; sigprocmask itself keeps
// the C library's internal signals out of any mask.
sigset_t all_signals() {
    sigset_t set;
    std::memset(&set, 0xff, sizeof set);
    return set;
}

void add_sigchld(sigset_t& set) {
    unsigned long word;
    std::memcpy(&word, &set, sizeof word);
    word |= 1ul << (SIGCHLD - 1);
    std::memcpy(&set, &word, sizeof word);
}

// True once the tool has exited (its pid still held, unreaped), false when
// the deadline comes first. SIGCHLD is blocked since start_tool, so one
// sent before the wait stays pending and ends it at once: a tool that exits
// in time is seen exiting without delay, with no polling and on any kernel
// or emulator. The tool is the gateway's only child.
bool await_exit(pid_t pid, std::int64_t deadline_ms) {
    sigset_t sigchld = no_signals();
    add_sigchld(sigchld);
    while (true) {
        std::int64_t left = deadline_ms - monotonic_ms();
        timespec wait = {static_cast<time_t>(left > 0 ? left / 1000 : 0),
                         static_cast<long>(left > 0 ? left % 1000 * 1000000 : 0)};
        siginfo_t info;
        info.si_pid = 0;
        if (sigtimedwait(&sigchld, &info, &wait) == SIGCHLD && info.si_pid == pid &&
            (info.si_code == CLD_EXITED || info.si_code == CLD_KILLED || info.si_code == CLD_DUMPED))
            return true;
        if (left <= 0) return false;  // and nothing pending: overdue
        // A stop, the timeout or EINTR: look again.
    }
}

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
[[noreturn]] void become_tool(const char* path, char* const* env, int input, int output, int exec_error) {
    struct sigaction defaults = {};
    defaults.sa_handler = SIG_DFL;
    sigaction(SIGPIPE, &defaults, nullptr);
    for (int sig : ending_signals) sigaction(sig, &defaults, nullptr);
    sigset_t none = no_signals();
    sigprocmask(SIG_SETMASK, &none, nullptr);
    // Its own process group, so that ending it also ends what it started.
    lead_own_group();
    move_fd(input, STDIN_FILENO);
    move_fd(output, STDOUT_FILENO);
    char argv0[] = "shelfctl";
    char* argv[] = {argv0, nullptr};
    execve(path, argv, env);
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

std::int64_t monotonic_ms() {
    // The system call fills the kernel's timespec of this ABI's long.
    static_assert(sizeof(time_t) == sizeof(long));
    timespec now;
    syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &now);
    return static_cast<std::int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

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
    // Not ignored, as a server may leave it: an ignored SIGCHLD reaps the
    // tool at its exit and frees its group id before its group is ended.
    struct sigaction child_default = {};
    child_default.sa_handler = SIG_DFL;
    sigaction(SIGCHLD, &child_default, nullptr);
}

int start_tool(const char* path, char* const* env, tool_process& tool) {
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
    sigset_t all = all_signals(), before;
    sigprocmask(SIG_SETMASK, &all, &before);
    pid_t pid = vfork();
    if (pid == 0) become_tool(path, env, to_tool[0], from_tool[1], exec_error[1]);
    int err = pid < 0 ? errno : 0;
    if (pid > 0) running_tool = pid;
    add_sigchld(before);  // kept pending for await_exit, never handled
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
            running_tool = 0;  // the child has ended by itself
            wait_for(pid);
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

bool end_tool(tool_process& tool, bool kill_first, std::int64_t deadline_ms) {
    bool in_time = kill_first || await_exit(tool.pid, deadline_ms);
    // The unreaped tool holds its pid, and so its group id: no other group
    // can have taken it. Once it is reaped, a signal must no longer look
    // for it.
    kill_group(tool.pid);
    running_tool = 0;
    wait_for(tool.pid);
    return in_time;
}
