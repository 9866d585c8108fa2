// Times one CGI request through each gateway as fresh processes, started
// directly (no shell in between), alternating the programs in batches over
// many rounds so that drift on a noisy machine hits all alike.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

struct program {
    const char* label;
    std::string path;
    std::string argv0;
    std::string stripped;  // stripped copy, for its size
    std::vector<double> per_request_ms;  // one figure per round
    std::vector<long> peak_kib;
};

double now_ms() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}

// Runs the program once with the request; returns its peak resident set.
long run_once(const program& p, int body_fd, char** envp) {
    lseek(body_fd, 0, SEEK_SET);
    pid_t pid = fork();
    if (pid == 0) {
        dup2(body_fd, 0);
        int null = open("/dev/null", O_WRONLY);
        dup2(null, 1);
        char* argv[] = {const_cast<char*>(p.argv0.c_str()), nullptr};
        execve(p.path.c_str(), argv, envp);
        _exit(127);
    }
    int status;
    rusage usage;
    wait4(pid, &status, 0, &usage);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::fprintf(stderr, "bench: %s failed (status %d)\n", p.label, status);
        std::exit(1);
    }
    return usage.ru_maxrss;
}

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.size() % 2 ? v[v.size() / 2] : (v[v.size() / 2 - 1] + v[v.size() / 2]) / 2;
}

long file_size(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 ? info.st_size : -1;
}

}  // namespace

// bench_driver BUILD_BENCH_DIR GATEWAY BODY_FILE VERB ROUNDS BATCH
int main(int argc, char** argv) {
    if (argc != 7) {
        std::fprintf(stderr, "usage: %s BENCH_DIR VERBGW BODY VERB ROUNDS BATCH\n", argv[0]);
        return 2;
    }
    std::string dir = argv[1], gateway = argv[2], body_path = argv[3], verb = argv[4];
    int rounds = std::atoi(argv[5]), batch = std::atoi(argv[6]);
    std::string source = std::string(BENCH_SOURCE_DIR);
    std::vector<program> programs = {
        {"floor (direct C)", dir + "/floor", "floor", dir + "/stripped/floor", {}, {}},
        {"verbgw", gateway, verb, dir + "/stripped/verbgw", {}, {}},
        {"shell line (popen)", dir + "/shell_line", "shell_line", dir + "/stripped/shell_line", {}, {}},
        {"shell-script CGI", source + "/shell_cgi.sh", "shell_cgi.sh", source + "/shell_cgi.sh", {}, {}},
    };
    int body_fd = open(body_path.c_str(), O_RDONLY);
    struct stat body_info;
    fstat(body_fd, &body_info);
    std::string length = "CONTENT_LENGTH=" + std::to_string(body_info.st_size);
    std::string path = "PATH=" + dir + "/tool:/usr/bin:/bin";
    char* envp[] = {const_cast<char*>("REQUEST_METHOD=POST"), length.data(), path.data(), nullptr};

    for (program& p : programs) run_once(p, body_fd, envp);  // warm the caches
    std::vector<std::vector<double>> ratios(programs.size());          // to the floor, per round
    std::vector<std::vector<double>> ratios_to_verbgw(programs.size());  // to verbgw, per round
    for (int round = 0; round < rounds; ++round) {
        std::vector<double> round_ms(programs.size());
        for (std::size_t k = 0; k < programs.size(); ++k) {
            std::size_t i = (k + static_cast<std::size_t>(round)) % programs.size();  // rotate the order
            program& p = programs[i];
            int runs = p.argv0 == "shell_cgi.sh" ? std::max(1, batch / 10) : batch;
            double start = now_ms();
            for (int n = 0; n < runs; ++n) p.peak_kib.push_back(run_once(p, body_fd, envp));
            round_ms[i] = (now_ms() - start) / runs;
            p.per_request_ms.push_back(round_ms[i]);
        }
        for (std::size_t i = 0; i < programs.size(); ++i) {
            ratios[i].push_back(round_ms[i] / round_ms[0]);
            ratios_to_verbgw[i].push_back(round_ms[i] / round_ms[1]);
        }
    }

    std::printf("%-20s %14s %14s %14s %14s\n", "program", "ms/request", "x floor", "peak RSS MiB", "stripped KiB");
    std::vector<double> ratio(programs.size()), rss(programs.size());
    for (std::size_t i = 0; i < programs.size(); ++i) {
        program& p = programs[i];
        ratio[i] = median(ratios[i]);
        std::vector<double> peaks(p.peak_kib.begin(), p.peak_kib.end());
        rss[i] = median(peaks) / 1024.0;
        std::printf("%-20s %14.3f %14.2f %14.2f %14.1f\n", p.label, median(p.per_request_ms), ratio[i], rss[i],
                    file_size(p.stripped) / 1024.0);
    }
    double shell_line_vs_verbgw = median(ratios_to_verbgw[2]), shell_cgi_vs_verbgw = median(ratios_to_verbgw[3]);
    struct target {
        const char* what;
        double measured;
        bool met;
    } targets[] = {
        {"verbgw within 1.10x of the floor's wall time", ratio[1], ratio[1] <= 1.10},
        {"shell line at least 1.7x slower than verbgw", shell_line_vs_verbgw, shell_line_vs_verbgw >= 1.7},
        {"shell-script CGI at least 10x slower than verbgw", shell_cgi_vs_verbgw, shell_cgi_vs_verbgw >= 10},
        {"verbgw peak RSS within 1.15x of the floor's", rss[1] / rss[0], rss[1] <= 1.15 * rss[0]},
    };
    std::printf("\n");
    for (const target& t : targets) std::printf("%-6s %-50s %6.2fx\n", t.met ? "PASS" : "MISS", t.what, t.measured);
    return 0;
}
