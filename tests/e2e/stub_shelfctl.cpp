// Stand-in shelfctl for the end-to-end tests. It records what it receives
// and prints scripted output, steered by the environment:
//   STUB_RECORD  file that receives everything read from standard input
//                (created even when nothing is read, to show the tool ran);
//                beside it <file>.pid gets the tool's pid and <file>.env
//                its name (ARGV0=...), whether it started with signals
//                blocked or SIGPIPE ignored, and its environment, a line each
//   STUB_OUTPUT  the output to print, a DEL byte printed as NUL (which the
//                environment cannot carry); default: a banner, a prompt,
//                the line "ran <first input line>" and the next prompt
//   STUB_MODE    read (default): read all input, then print
//                noread: print without reading, then exit
//                bytewise: read, then print a byte every millisecond
//                flood: read, print, then print lines until the pipe closes
//                hang: read, print, then never end
//                trickle: read, print, then a line every 0.25 s, never ending
//                warn: print a warning on standard error, then as read
//                fork-<mode>: as <mode> after starting a child that sleeps
//                30 s in the tool's group (its pid in <STUB_RECORD>.child)
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace {

void write_all(int fd, const std::string& text) {
    for (std::size_t done = 0; done < text.size();) {
        ssize_t put = write(fd, text.data() + done, text.size() - done);
        if (put <= 0) std::exit(0);
        done += static_cast<std::size_t>(put);
    }
}

// Written whole under a temporary name, then renamed, so that a reader
// that sees the file sees all of it.
void spill(const std::string& path, const std::string& text) {
    int fd = open((path + ".part").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    write_all(fd, text);
    close(fd);
    rename((path + ".part").c_str(), path.c_str());
}

}  // namespace

int main(int, char** argv) {
    const char* record = std::getenv("STUB_RECORD");
    const char* output = std::getenv("STUB_OUTPUT");
    std::string mode = std::getenv("STUB_MODE") ? std::getenv("STUB_MODE") : "read";
    if (mode.starts_with("fork-") && record) {
        mode.erase(0, 5);
        if (pid_t child = fork(); child == 0) sleep(30), _exit(0);
        else spill(std::string(record) + ".child", std::to_string(child));
    }
    int input_file = record ? open(record, O_WRONLY | O_CREAT | O_TRUNC, 0600) : -1;
    if (record) {
        sigset_t blocked;
        struct sigaction pipe_action;
        sigprocmask(SIG_SETMASK, nullptr, &blocked);
        sigaction(SIGPIPE, nullptr, &pipe_action);
        std::string environment = std::string("ARGV0=") + argv[0] + "\nBLOCKED=" +
                                  (sigisemptyset(&blocked) ? "none" : "some") + "\nSIGPIPE=" +
                                  (pipe_action.sa_handler == SIG_IGN ? "ignored" : "default") + "\n";
        for (char** entry = environ; *entry != nullptr; ++entry) environment += std::string(*entry) + "\n";
        spill(std::string(record) + ".env", environment);
        spill(std::string(record) + ".pid", std::to_string(getpid()));
    }
    if (mode == "warn") write_all(2, "shelfctl: warning\n");
    std::string input;
    char buf[4096];
    for (ssize_t got; mode != "noread" && (got = read(0, buf, sizeof buf)) > 0;) input.append(buf, got);
    if (input_file >= 0) write_all(input_file, input);
    std::string answer = output ? output : "banner\nCLI> \nran " + input.substr(0, input.find('\n')) + "\nCLI> \n";
    for (char& c : answer) c = c == '\x7f' ? '\0' : c;
    if (mode == "bytewise") {
        for (char c : answer) write_all(1, std::string(1, c)), usleep(1000);
    } else {
        write_all(1, answer);
    }
    while (mode == "flood") write_all(1, "more output after the prompt\n");
    while (mode == "trickle") write_all(1, "waiting for the shelf\n"), usleep(250000);
    while (mode == "hang") pause();
    return 0;
}
