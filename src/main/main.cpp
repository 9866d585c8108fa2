// Program entry: record the invocation, pick the verb by name, serve it.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "main/verb_table.hpp"

namespace {

constexpr const char* log_path = "/var/tmp/verbgw.log";

// Overwrites the start of the log with the raw invocation path: no
// truncation, no line feed, so it always shows the latest request's name.
int log_invocation(const char* invocation) {
    int fd = open(log_path, O_RDWR | O_CREAT | O_CLOEXEC, 0640);
    if (fd >= 0 && invocation != nullptr) {
        ssize_t ignored = write(fd, invocation, std::strlen(invocation));
        (void)ignored;
    }
    return fd;
}

}  // namespace

int main(int, char** argv) {
    // The page goes out through one fixed buffer: no allocation and no
    // probing of the output file before the first write.
    static char page_buffer[16384];
    std::setvbuf(stdout, page_buffer, _IOFBF, sizeof page_buffer);
    const char* invocation = argv[0];
    int log_fd = log_invocation(invocation);
    if (const verb_entry* verb = find_verb(verb_name_of(invocation))) {
        serve_verb(*verb);
        close(log_fd);
        return 0;
    }
    close(log_fd);
    std::fputs("Can't find the requested command\n", stdout);
    serve_verb(*find_verb("version"));
    return -22;
}
