#pragma once

#include <string>

namespace LinuxHost {

// The virtual machines of the host's hypervisor service. A host without that service runs none.
class VirtualMachines {
  public:
    static constexpr const char* kSystemUri = "qemu:///system";

    explicit VirtualMachines(std::string uri = kSystemUri);

    // HostCtl::Lib::HostCtlException when the service is there but does not answer.
    int CountRunning() const;
    // Asks every running machine to shut down and waits up to `graceSeconds` for them; with `force`,
    // switches them off at once instead. Returns how many still run.
    int ShutDown(bool force, int graceSeconds) const;

  private:
    std::string _uri;
};

}  // namespace LinuxHost
