#include "gateway_run.hpp"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

std::string env_or(const char* name, const char* fallback) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : fallback;
}

void append_words(std::vector<std::string>& args, const std::string& text) {
    std::istringstream words(text);
    for (std::string word; words >> word;) args.push_back(word);
}

}  // namespace

std::string stub_dir() { return env_or("VERBGW_STUB_DIR", VERBGW_DEFAULT_STUB_DIR); }

std::string slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

gateway_result run_gateway(const gateway_request& request) {
    char dir_template[] = "/tmp/verbgw-e2e-XXXXXX";
    std::string dir = mkdtemp(dir_template), record = dir + "/tool_input", links = dir + "/links";
    std::ofstream(dir + "/body", std::ios::binary) << request.body;

    std::string binary = request.short_limits ? env_or("VERBGW_SHORT_LIMITS_BINARY", VERBGW_SHORT_LIMITS_BINARY)
                                              : env_or("VERBGW_BINARY", VERBGW_DEFAULT_BINARY);
    // VERBGW_EMULATOR (for a cross-built gateway) holds the emulator's
    // command; "-0 <name>" passes the invocation name through it.
    std::string emulator = env_or("VERBGW_EMULATOR", "");
    // VERBGW_WRAPPER (a checker such as valgrind) runs the gateway found on
    // PATH through a link named as the invocation, so the name reaches it.
    // Names a link cannot carry (paths, empty, over-long) run unwrapped, and
    // so does a gateway without room for the checker's own files.
    std::string wrapper = env_or("VERBGW_WRAPPER", "");
    if (request.no_argv0 || request.argv0.empty() || request.argv0.size() > 200 ||
        request.argv0.find('/') != std::string::npos || request.open_file_limit > 0)
        wrapper.clear();

    std::vector<std::string> args;
    std::string path = request.path.value_or(stub_dir() + ":");
    if (!wrapper.empty()) {
        std::filesystem::create_directory(links);
        std::filesystem::create_symlink(binary, links + "/" + request.argv0);
        append_words(args, wrapper);
        args.push_back(request.argv0);
        path += links + ":";
    } else if (!emulator.empty()) {
        append_words(args, emulator);
        args.insert(args.end(), {"-0", request.no_argv0 ? "" : request.argv0, binary});
    } else if (!request.no_argv0) {
        args.push_back(request.argv0);
    }

    std::vector<std::string> env = {"PATH=" + path + "/usr/bin:/bin", "STUB_RECORD=" + record,
                                     "STUB_MODE=" + request.tool_mode};
    if (request.method) env.push_back("REQUEST_METHOD=" + *request.method);
    if (request.content_length) {
        env.push_back("CONTENT_LENGTH=" + *request.content_length);
    } else if (request.method == "POST") {
        env.push_back("CONTENT_LENGTH=" + std::to_string(request.body.size()));
    }
    if (request.tool_output) env.push_back("STUB_OUTPUT=" + *request.tool_output);
    env.insert(env.end(), request.extra_env.begin(), request.extra_env.end());
    for (const char* pass : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "QEMU_LD_PREFIX"}) {
        if (const char* value = std::getenv(pass)) env.push_back(std::string(pass) + "=" + value);
    }
    std::vector<char*> argv, envp;
    for (std::string& arg : args) argv.push_back(arg.data());
    for (std::string& var : env) envp.push_back(var.data());
    argv.push_back(nullptr);
    envp.push_back(nullptr);
    bool slow = !emulator.empty() || !wrapper.empty();  // found on PATH, and given longer to end

    pid_t pid = fork();
    if (pid == 0) {
        int in = open(request.stdin_from.value_or(dir + "/body").c_str(), O_RDONLY);
        int out = open((dir + "/out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        int err = open((dir + "/err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (in < 0) close(0);  // stdin_from "": no standard input at all
        else dup2(in, 0);
        dup2(request.out_fd >= 0 ? request.out_fd : out, 1);
        dup2(request.merge_stderr ? out : err, 2);
        close_range(3, ~0u, 0);  // the gateway starts with the standard streams only
        if (!request.cwd.empty() && chdir(request.cwd.c_str()) != 0) _exit(126);
        if (request.open_file_limit > 0) {
            rlimit limit{static_cast<rlim_t>(request.open_file_limit),
                         static_cast<rlim_t>(request.open_file_limit)};
            setrlimit(RLIMIT_NOFILE, &limit);
        }
        if (slow) execvpe(args[0].c_str(), argv.data(), envp.data());
        else execve(binary.c_str(), argv.data(), envp.data());
        _exit(127);
    }
    if (request.while_running) {
        // Once the tool has started (it records its pid), however slowly
        // the gateway starts.
        for (int i = 0; i < 2000 && !std::filesystem::exists(record + ".pid"); ++i) usleep(5000);
        std::string tool = slurp(record + ".pid");
        request.while_running(pid, tool.empty() ? 0 : std::stoi(tool));
    }
    // A gateway that never ends fails its case instead of the whole suite.
    int wait_status = 0;
    for (int waited_ms = 0; waitpid(pid, &wait_status, WNOHANG) == 0; ++waited_ms) {
        if (waited_ms == (slow ? 60000 : 10000)) kill(pid, SIGKILL);
        usleep(1000);
    }

    gateway_result result;
    result.out = slurp(dir + "/out");
    result.err = slurp(dir + "/err");
    result.status = WIFEXITED(wait_status) ? WEXITSTATUS(wait_status) : 128 + WTERMSIG(wait_status);
    if (std::filesystem::exists(record)) result.tool_input = slurp(record);
    result.tool_env = slurp(record + ".env");
    std::string tool_pid = slurp(record + ".pid");
    if (!tool_pid.empty()) result.tool_pid = std::stoi(tool_pid);
    std::string tool_child = slurp(record + ".child");
    if (!tool_child.empty()) result.tool_child = std::stoi(tool_child);
    std::filesystem::remove_all(dir);
    return result;
}

bool process_alive(int pid) { return pid > 0 && (kill(pid, 0) == 0 || errno != ESRCH); }

bool process_ends(int pid) {
    for (int waited_ms = 0; waited_ms < 5000; ++waited_ms, usleep(1000)) {
        std::string stat = slurp("/proc/" + std::to_string(pid) + "/stat");  // "pid (name) state ..."
        if (stat.empty() || stat[stat.rfind(')') + 2] == 'Z') return true;
    }
    return false;
}

gateway_request post(std::string verb, std::string body) {
    gateway_request request;
    request.argv0 = std::move(verb);
    request.body = std::move(body);
    return request;
}

gateway_request get(std::string verb) {
    gateway_request request = post(std::move(verb), "");
    request.method = "GET";
    return request;
}


