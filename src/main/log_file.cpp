#include "main/log_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

int log_invocation(const char* path, const char* invocation) {
    // O_NOFOLLOW: a planted link is refused, never written through or
    // created at its target. O_NONBLOCK: a FIFO held open cannot hold the
    // open or the write. Hard links to another file are refused as well.
    int fd = open(path, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0640);
    if (fd < 0) return -1;
    struct stat info;
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode) || info.st_nlink != 1) {
        close(fd);
        return -1;
    }
    if (invocation != nullptr) {
        ssize_t ignored = write(fd, invocation, std::strlen(invocation));
        (void)ignored;
    }
    return fd;
}
