// Runs the console's host-command wrappers inside a simulated host and prints what they returned, so a
// test outside can compare that with what the host recorded.
//   runner_probe hcl <user> <command path>   -> "status=<n>"
//   runner_probe query <command path>        -> "true" or "false"
#include <syslog.h>

#include <cstdio>
#include <cstring>

#include "app/CommandRunner.h"

int main(int argc, char** argv) {
    openlog("KOVO", LOG_PID, LOG_USER);
    if (argc == 4 && strcmp(argv[1], "hcl") == 0) {
        char out[256];
        int outLength = sizeof out;
        int status = Kovo::RunHclCmd({"hcl-cmd", "-U", argv[2], argv[3]}, out, &outLength);
        printf("status=%d\n", status);
        return 0;
    }
    if (argc == 3 && strcmp(argv[1], "query") == 0) {
        puts(Kovo::HclCmdQuery(argv[2]) ? "true" : "false");
        return 0;
    }
    fprintf(stderr, "usage: runner_probe hcl USER PATH | query PATH\n");
    return 2;
}
