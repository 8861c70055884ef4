#pragma once

#include <string>
#include <vector>

#include "platform/linux/HostFiles.h"

namespace LinuxHost {

// kovo-host: the jobs the console's host programs do, done the Linux host's way. The console never runs
// it by name: the Linux platform resolves the documented programs to it (LinuxPrograms). Run by hand it
// says what it did on standard output and why it failed on standard error.
//
//   service ssh|shell status|start|stop|restart|enable|disable
//   power off|reboot
//   vms running | vms shutdown [--force]     (libvirt's LIBVIRT_DEFAULT_URI, else qemu:///system)
//   agents start|stop
//   query lockdown-enabled|lockdown-possible
//   option get PATH | option set PATH SECONDS
//   log syslog|kernel|boot|agent|NAME [LESS-OPTIONS...]
//   unavailable WHAT
//
// Exit status: 0 done; 1 failed; 2 a command it does not know; 3 (service status, vms running) not running.
class HostTool {
  public:
    // The host's files: "/" on a host; the options file is the one the console's platform reads.
    explicit HostTool(HostFiles files);
    int Run(const std::vector<std::string>& args);

    // The unit behind a service name the console uses; "" for one it does not know.
    static std::string UnitOf(const std::string& service);
    // The journal's command line for a log the console names; empty for a log this host does not keep.
    static std::vector<std::string> JournalOf(const std::string& log);

  private:
    int Service(const std::string& name, const std::string& action);
    int Power(const std::string& action);
    int Vms(std::vector<std::string> args);
    int Agents(const std::string& action);
    int Option(const std::vector<std::string>& args);
    int Log(const std::string& name, const std::vector<std::string>& pagerOptions);
    HostFiles _files;
};

}  // namespace LinuxHost
