// Stand-in shelfctl for the end-to-end tests. It records what it receives
// and prints scripted output, steered by the environment:
//   STUB_RECORD  file that receives everything read from standard input
//                (created even when nothing is read, to show the tool ran)
//   STUB_OUTPUT  the output to print; default: a banner, a prompt, the line
//                "ran <first input line>" and the next prompt
//   STUB_MODE    read (default): read all input, then print
//                noread: print without reading, then exit
//                flood: read, print, then print lines until the pipe closes
//                sleep: record "pid <n>", print nothing and never end
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

void write_all(int fd, const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        ssize_t put = write(fd, text.data() + done, text.size() - done);
        if (put <= 0) std::exit(0);
        done += static_cast<std::size_t>(put);
    }
}

std::string read_all(int fd) {
    std::string text;
    char buf[4096];
    for (ssize_t got; (got = read(fd, buf, sizeof buf)) > 0;) text.append(buf, static_cast<std::size_t>(got));
    return text;
}

}  // namespace

int main() {
    const char* record_path = std::getenv("STUB_RECORD");
    const char* output = std::getenv("STUB_OUTPUT");
    std::string mode = std::getenv("STUB_MODE") ? std::getenv("STUB_MODE") : "read";
    int record = record_path ? open(record_path, O_WRONLY | O_CREAT | O_TRUNC, 0600) : -1;

    if (mode == "sleep") {
        write_all(record, "pid " + std::to_string(getpid()));
        for (;;) pause();
    }
    std::string input;
    if (mode != "noread") {
        input = read_all(STDIN_FILENO);
        if (record >= 0) write_all(record, input);
    }
    std::string answer = output ? output
                                : "stub shelfctl\nCLI> \nran " + input.substr(0, input.find('\n')) + "\nCLI> \n";
    write_all(STDOUT_FILENO, answer);
    if (mode == "flood") {
        for (;;) write_all(STDOUT_FILENO, "more output after the prompt\n");
    }
    return 0;
}
