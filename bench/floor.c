/* The floor: the least a gateway must do. Starts the tool directly with a
   fixed command text and copies its answer to the page. */
#include <spawn.h>
#include <stdio.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

int main(void) {
    int in[2], out[2];
    if (pipe(in) != 0 || pipe(out) != 0) return 1;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], 0);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    posix_spawn_file_actions_addclose(&actions, in[1]);
    posix_spawn_file_actions_addclose(&actions, out[0]);
    char *argv[] = {"shelfctl", NULL};
    pid_t pid;
    if (posix_spawnp(&pid, "shelfctl", &actions, NULL, argv, environ) != 0) return 1;
    close(in[0]);
    close(out[1]);
    static const char input[] = "sensor  0x82 3\nquit\n\n";
    if (write(in[1], input, sizeof input - 1) < 0) return 1;
    close(in[1]);
    fputs("Content-type: text/html\n\n<PRE>", stdout);
    char buf[4096];
    ssize_t got;
    while ((got = read(out[0], buf, sizeof buf)) > 0) fwrite(buf, 1, (size_t)got, stdout);
    fputs("</PRE>", stdout);
    close(out[0]);
    waitpid(pid, NULL, 0);
    return 0;
}
