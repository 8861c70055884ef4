#pragma once

#include <sys/types.h>

#include <string>

#include "HostLayout.h"

namespace KovoSim {

// The namespaces and mounts that make a simulated host: private mount, PID, UTS, IPC and network
// namespaces (plus a user namespace when not run as root), the machine's /etc, /usr/bin, /usr/sbin,
// /usr/lib and /var/log as overlays whose upper layers are the host's disk, a fresh tmpfs /run, a tmpfs
// /dev holding only harmless device nodes (no real console), the namespace's own /proc, and a network
// with nothing but loopback. Failures throw std::system_error naming the step.
class HostNamespace {
  public:
    // Moves the calling process into new namespaces. Its next child is PID 1 of the host.
    static void Create();

    // In PID 1 of a new host: mounts everything. Returns a descriptor (O_PATH) of the machine's /proc as
    // it was before, through which the outside process ids of the host's processes can be found.
    static int Mount(const HostLayout& layout);

    // Joins the namespaces of the running host whose PID 1 has the given (outside) process id; the next
    // child of the caller lives inside it.
    static void Join(pid_t init);

    // A fresh, empty /run for the next boot of the host.
    static void RemountRun();

    // Makes a machine file or directory (with whatever is mounted below it) read-only inside the host,
    // so nothing run in the host can change it, not even through the host's links to it.
    static void MakeReadOnly(const std::string& path);

  private:
    static void BringUpLoopback();
};

}  // namespace KovoSim
