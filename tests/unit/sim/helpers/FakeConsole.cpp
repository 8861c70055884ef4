// A stand-in console for the launcher's tests: runs the actions named on its command line, in order.
//   syslog PRIORITY MESSAGE   openlog("KOVO", LOG_PID, LOG_USER) and syslog(PRIORITY, MESSAGE)
//   write PATH TEXT           create or replace PATH with TEXT
//   append PATH TEXT          append TEXT and a newline to PATH
//   pidfile                   write the own pid to /var/run/kovo.pid
//   report FILE               write facts about the environment it runs in, one "key=value" a line
//   wait                      exit 0 on SIGINT or SIGTERM, as the real console does; wait for them
//   exit N                    exit with status N
#include <signal.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/sysmacros.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

#include <linux/magic.h>

namespace {

std::string FsType(const char* path) {
    struct statfs fs {};
    if (::statfs(path, &fs) != 0) return "missing";
    if (fs.f_type == TMPFS_MAGIC) return "tmpfs";
    if (fs.f_type == OVERLAYFS_SUPER_MAGIC) return "overlay";
    return "other";
}

void Report(const std::string& file) {
    std::ofstream out(file);
    out << "pid=" << ::getpid() << "\n";
    out << "uid=" << ::getuid() << "\n";
    for (const char* path :
         {"/run", "/var/run", "/etc", "/usr/bin", "/usr/sbin", "/usr/lib", "/var/log", "/dev"})
        out << "fs:" << path << "=" << FsType(path) << "\n";
    struct stat console {};
    if (::stat("/dev/console", &console) == 0)
        out << "console=" << major(console.st_rdev) << ":" << minor(console.st_rdev) << "\n";
    char host[256] = {};
    ::gethostname(host, sizeof host - 1);
    out << "hostname=" << host << "\n";
}

void ExitZero(int) {
    _exit(0);
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string action = argv[i];
        auto next = [&]() -> std::string {
            if (i + 1 >= argc) {
                std::cerr << "fake console: " << action << " needs an argument\n";
                std::exit(100);
            }
            return argv[++i];
        };
        if (action == "syslog") {
            const int priority = std::stoi(next());
            const std::string message = next();
            ::openlog("KOVO", LOG_PID, LOG_USER);
            ::syslog(priority, "%s", message.c_str());
        } else if (action == "write") {
            const std::string path = next();
            std::ofstream(path, std::ios::trunc) << next();
        } else if (action == "append") {
            const std::string path = next();
            std::ofstream(path, std::ios::app) << next() << "\n";
        } else if (action == "pidfile") {
            std::ofstream("/var/run/kovo.pid", std::ios::trunc) << ::getpid();
        } else if (action == "report") {
            Report(next());
        } else if (action == "wait") {
            ::signal(SIGINT, ExitZero);
            ::signal(SIGTERM, ExitZero);
            for (;;) ::pause();
        } else if (action == "exit") {
            return std::stoi(next());
        } else {
            std::cerr << "fake console: unknown action " << action << "\n";
            return 100;
        }
    }
    return 0;
}
