// Program entry: record the invocation, pick the verb by name, serve it.
#include <unistd.h>

#include <cstdio>

#include "main/log_file.hpp"
#include "main/verb_table.hpp"

int main(int, char** argv, char** envp) {
    // The page goes out through one fixed buffer: no allocation and no
    // probing of the output file before the first write.
    static char page_buffer[16384];
    std::setvbuf(stdout, page_buffer, _IOFBF, sizeof page_buffer);
    const char* invocation = argv[0];
    int log_fd = log_invocation(log_path, invocation);
    if (const verb_entry* verb = find_verb(verb_name_of(invocation))) {
        serve_verb(*verb, envp);
        close(log_fd);
        return 0;
    }
    close(log_fd);
    std::fputs("Can't find the requested command\n", stdout);
    serve_verb(*find_verb("version"), envp);
    return -22;
}
