// Runs console functions inside a simulated host and prints what they returned, so that a test outside
// can compare that with what the host holds and recorded.
//   host_probe hcl <user> <command path>   -> "status=<n>"
//   host_probe query <command path>        -> "true" or "false"
//   host_probe value <variable>            -> the variable's value as markup shows it
//   host_probe resolve <name> [locked]     -> "result=<n> same=<true|false>": the network test's resolve
//                                             test, the hosts file compared before and after; "locked"
//                                             holds the backup's lock as another console's test would
#include <fcntl.h>
#include <sys/file.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "frames/HostAccess.h"
#include "main/HostPlatformChoice.h"
#include "network/HostsFileBackup.h"
#include "network/NetworkTest.h"
#include "terminal/CommandRunner.h"
#include "text/HostPlatform.h"
#include "text/TextArea.h"

int main(int argc, char** argv) {
    openlog("KOVO", LOG_PID, LOG_USER);
    // The host's platform, wired up as start-up does.
    Kovo::HostAccess host(Kovo::ChooseHostPlatform());
    Kovo::InstallHostPrograms(&host.Platform().Programs());
    Kovo::InstallTextPlatform(&host.Platform());
    if (argc == 4 && strcmp(argv[1], "hcl") == 0) {
        char out[256];
        int outLength = sizeof out;
        printf("status=%d\n", Kovo::RunHclCmd({"hcl-cmd", "-U", argv[2], argv[3]}, out, &outLength));
        return 0;
    }
    if (argc == 3 && strcmp(argv[1], "query") == 0) {
        puts(Kovo::HclCmdQuery(argv[2]) ? "true" : "false");
        return 0;
    }
    if (argc == 3 && strcmp(argv[1], "value") == 0) {
        // The same table markup looks variables up in, without a screen.
        for (const auto& [name, value] : Kovo::TextArea::VariableTable()) {
            if (name == argv[2]) {
                puts(value().c_str());
                return 0;
            }
        }
        fprintf(stderr, "unknown variable %s\n", argv[2]);
        return 2;
    }
    if ((argc == 3 || argc == 4) && strcmp(argv[1], "resolve") == 0) {
        const auto hosts = [] {
            std::ostringstream text;
            text << std::ifstream("/etc/hosts", std::ios::binary).rdbuf();
            return text.str();
        };
        const std::string before = hosts();
        if (argc == 4) {
            const int other =
                open(Kovo::HostsFileBackup::Paths().lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
            if (other < 0 || flock(other, LOCK_EX) != 0) return 2;
        }
        const int result = Kovo::NetworkTest::Resolve(host, argv[2]);
        printf("result=%d same=%s\n", result, hosts() == before ? "true" : "false");
        return 0;
    }
    if (argc == 2 && strcmp(argv[1], "nothing") == 0) return 0;
    fprintf(stderr,
            "usage: host_probe hcl USER PATH | query PATH | value NAME | resolve NAME [locked] | nothing\n");
    return 2;
}
