#pragma once

#include <optional>
#include <string>

#include "platform/hostctl/HostPrograms.h"

namespace LinuxHost {

// What the console's host programs are on a Linux host: the host's own tools where it has them under
// other paths (less, openssl, ssh-keygen), the host tool (kovo-host) for the jobs a Linux host does its
// own way (services, power, virtual machines, options, logs), and "true" for steps a Linux host does not
// need (saving its configuration, which is on disk once written). Anything else stays as documented.
class LinuxPrograms : public HostCtl::HostPrograms {
  public:
    static constexpr const char* kHostTool = "/usr/libexec/kovo/kovo-host";

    HostCtl::Program Resolve(const HostCtl::Program& documented) const override;
    // The logs the console names that the journal keeps on this host.
    static bool IsJournalLog(const std::string& path);
    // The platform's command lines (HostFactory::Exec) this host can run; nullopt for the others.
    static std::optional<HostCtl::Program> ResolveCommandLine(const std::string& commandLine);
    // Runs a program with no terminal and no input, in a session of its own so that no key at the console
    // reaches it, and waits: its exit status, or 127 when it could not start. What it says on standard
    // error goes to `errors` when given.
    static int RunDetached(const HostCtl::Program& program, std::string* errors = nullptr);
};

}  // namespace LinuxHost
