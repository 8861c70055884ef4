#include "HostNamespace.h"

#include <fcntl.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <vector>

namespace KovoSim {
namespace {

[[noreturn]] void Fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

void WriteFile(const std::string& path, const std::string& text) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (fd < 0) Fail("open " + path);
    const ssize_t n = ::write(fd, text.data(), text.size());
    const int saved = errno;
    ::close(fd);
    errno = saved;
    if (n != static_cast<ssize_t>(text.size())) Fail("write " + path);
}

void DoMount(const char* source, const std::string& target, const char* type, unsigned long flags,
             const std::string& data = {}) {
    if (::mount(source, target.c_str(), type, flags, data.empty() ? nullptr : data.c_str()) != 0)
        Fail(std::string("mount ") + (type ? type : "bind") + " on " + target);
}

// Binds a node of the machine's /dev (opened before /dev was replaced) onto an empty file.
void BindNode(int fd, const std::string& target) {
    const int made = ::open(target.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0666);
    if (made < 0) Fail("create " + target);
    ::close(made);
    DoMount(("/proc/self/fd/" + std::to_string(fd)).c_str(), target, nullptr, MS_BIND);
}

bool InUserNamespace() {
    return ::geteuid() != 0;
}

}  // namespace

void HostNamespace::Create() {
    const uid_t uid = ::geteuid();
    const gid_t gid = ::getegid();
    int flags = CLONE_NEWNS | CLONE_NEWPID | CLONE_NEWUTS | CLONE_NEWIPC | CLONE_NEWNET;
    if (uid != 0) flags |= CLONE_NEWUSER;
    if (::unshare(flags) != 0) Fail("unshare");
    if (uid != 0) {
        WriteFile("/proc/self/setgroups", "deny");
        WriteFile("/proc/self/uid_map", "0 " + std::to_string(uid) + " 1");
        WriteFile("/proc/self/gid_map", "0 " + std::to_string(gid) + " 1");
    }
    // Nothing mounted in the host may reach the machine.
    DoMount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE);
}

int HostNamespace::Mount(const HostLayout& layout) {
    // PID 1 mounts in a mount namespace of its own: the launcher that waits for it keeps the machine's
    // /proc (its own tools, and the sanitizers' leak check, read /proc/self).
    if (::unshare(CLONE_NEWNS) != 0) Fail("unshare");
    DoMount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE);
    // Overlays first, while the machine's /dev and /proc are still in place.
    const std::string xattr = InUserNamespace() ? ",userxattr" : "";
    for (const char* path : HostLayout::kOverlays) {
        DoMount("overlay", path, "overlay", 0,
                std::string("lowerdir=") + path + ",upperdir=" + layout.Upper(path) +
                    ",workdir=" + layout.Work(path) + xattr);
    }

    const int oldProc = ::open("/proc", O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (oldProc < 0) Fail("open /proc");

    DoMount("tmpfs", "/run", "tmpfs", MS_NOSUID | MS_NODEV, "mode=0755");

    // A fresh /dev: the harmless nodes of the machine's, and /dev/console as /dev/null so a console
    // switch on it can never reach the machine's screen.
    struct Node {
        const char* name;
        const char* source;
        int fd;
    };
    std::vector<Node> nodes = {{"null", "/dev/null", -1},       {"zero", "/dev/zero", -1},
                               {"full", "/dev/full", -1},       {"random", "/dev/random", -1},
                               {"urandom", "/dev/urandom", -1}, {"tty", "/dev/tty", -1},
                               {"ptmx", "/dev/ptmx", -1},       {"console", "/dev/null", -1}};
    for (Node& node : nodes) {
        node.fd = ::open(node.source, O_PATH | O_CLOEXEC);
        if (node.fd < 0) Fail(std::string("open ") + node.source);
    }
    const int pts = ::open("/dev/pts", O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (pts < 0) Fail("open /dev/pts");

    DoMount("tmpfs", "/dev", "tmpfs", MS_NOSUID | MS_NOEXEC, "mode=0755");
    for (Node& node : nodes) {
        BindNode(node.fd, std::string("/dev/") + node.name);
        ::close(node.fd);
    }
    if (::mkdir("/dev/pts", 0755) != 0) Fail("mkdir /dev/pts");
    DoMount(("/proc/self/fd/" + std::to_string(pts)).c_str(), "/dev/pts", nullptr, MS_BIND | MS_REC);
    ::close(pts);
    if (::mkdir("/dev/shm", 01777) != 0) Fail("mkdir /dev/shm");
    DoMount("tmpfs", "/dev/shm", "tmpfs", MS_NOSUID | MS_NODEV, "mode=1777");
    for (auto [link, target] :
         {std::pair{"/dev/fd", "/proc/self/fd"}, std::pair{"/dev/stdin", "/proc/self/fd/0"},
          std::pair{"/dev/stdout", "/proc/self/fd/1"}, std::pair{"/dev/stderr", "/proc/self/fd/2"}}) {
        if (::symlink(target, link) != 0) Fail(std::string("symlink ") + link);
    }

    DoMount("proc", "/proc", "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC);
    BringUpLoopback();
    return oldProc;
}

void HostNamespace::MakeReadOnly(const std::string& path) {
    DoMount(path.c_str(), path, nullptr, MS_BIND | MS_REC);
    // A remount must keep the flags the machine's mount has, or a user namespace refuses it.
    struct statvfs fs {};
    if (::statvfs(path.c_str(), &fs) != 0) Fail("statvfs " + path);
    unsigned long flags = MS_BIND | MS_REMOUNT | MS_RDONLY;
    if (fs.f_flag & ST_NOSUID) flags |= MS_NOSUID;
    if (fs.f_flag & ST_NODEV) flags |= MS_NODEV;
    if (fs.f_flag & ST_NOEXEC) flags |= MS_NOEXEC;
    if (fs.f_flag & ST_NOATIME) flags |= MS_NOATIME;
    if (fs.f_flag & ST_NODIRATIME) flags |= MS_NODIRATIME;
    if (fs.f_flag & ST_RELATIME) flags |= MS_RELATIME;
    DoMount(nullptr, path, nullptr, flags);
}

void HostNamespace::BringUpLoopback() {
    const int sock = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (sock < 0) Fail("socket");
    struct ifreq request {};
    std::snprintf(request.ifr_name, IFNAMSIZ, "lo");
    int result = ::ioctl(sock, SIOCGIFFLAGS, &request);
    if (result == 0) {
        request.ifr_flags |= IFF_UP | IFF_RUNNING;
        result = ::ioctl(sock, SIOCSIFFLAGS, &request);
    }
    const int saved = errno;
    ::close(sock);
    errno = saved;
    if (result != 0) Fail("bring up lo");
}

void HostNamespace::RemountRun() {
    if (::umount2("/run", MNT_DETACH) != 0) Fail("umount /run");
    DoMount("tmpfs", "/run", "tmpfs", MS_NOSUID | MS_NODEV, "mode=0755");
}

void HostNamespace::Join(pid_t init) {
    const std::string base = "/proc/" + std::to_string(init) + "/ns/";
    struct stat mine {
    }, theirs{};
    const bool otherUser = ::stat("/proc/self/ns/user", &mine) == 0 &&
                           ::stat((base + "user").c_str(), &theirs) == 0 && mine.st_ino != theirs.st_ino;
    std::vector<std::pair<const char*, int>> order = {{"ipc", CLONE_NEWIPC},
                                                      {"uts", CLONE_NEWUTS},
                                                      {"net", CLONE_NEWNET},
                                                      {"pid", CLONE_NEWPID},
                                                      {"mnt", CLONE_NEWNS}};
    if (otherUser) order.insert(order.begin(), {"user", CLONE_NEWUSER});
    std::vector<int> fds;
    for (auto [name, type] : order) {
        const int fd = ::open((base + name).c_str(), O_RDONLY | O_CLOEXEC);
        if (fd < 0) Fail("open " + base + name);
        fds.push_back(fd);
    }
    for (size_t i = 0; i < order.size(); ++i) {
        if (::setns(fds[i], order[i].second) != 0)
            Fail(std::string("enter the host's ") + order[i].first + " namespace");
        ::close(fds[i]);
    }
}

}  // namespace KovoSim
