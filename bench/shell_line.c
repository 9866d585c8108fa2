/* The shell-line design: the tool run through popen and the system shell,
   as a straightforward CGI would. */
#include <stdio.h>

int main(void) {
    char line[256];
    snprintf(line, sizeof line, "echo -e \"%s\nquit\n\" | shelfctl", "sensor  0x82 3");
    FILE *tool = popen(line, "r");
    if (tool == NULL) return 1;
    fputs("Content-type: text/html\n\n<PRE>", stdout);
    char buf[255];
    while (fgets(buf, sizeof buf, tool) != NULL) fputs(buf, stdout);
    fputs("</PRE>", stdout);
    pclose(tool);
    return 0;
}
