#pragma once

#include <set>
#include <string>

#include <nlohmann/json.hpp>

#include "platform/linux/HostFiles.h"
#include "platform/linux/KernelNetwork.h"

namespace LinuxHost {

// What taking the management network over from ifupdown changes outside the network service's
// checkpoint: ifupdown's interfaces file, and the service's reading of it, which it does only as it
// starts (so a hand-over restarts the service, before the checkpoint opens). The file as it was is
// recorded on disk first: a change that is not kept, a console killed before it was, or a host restarted
// meanwhile all find the record and put the file back.
class IfupdownHandover {
  public:
    static constexpr const char* kInterfaces = "/etc/network/interfaces";
    static constexpr const char* kRecord = "/var/lib/kovo/ifupdown-handover";
    static constexpr const char* kService = "NetworkManager.service";
    static constexpr const char* kIfup = "/sbin/ifup";
    static constexpr const char* kIfdown = "/sbin/ifdown";

    explicit IfupdownHandover(HostFiles files) : _files(std::move(files)) {}

    // Whether ifupdown's file configures `interface`.
    bool Configures(const std::string& interface) const;
    // Records the file and the service's profiles (`profiles`, by UUID), writes the file without what
    // configures `interfaces`, and restarts the service.
    void HandOver(const std::set<std::string>& interfaces, const std::set<std::string>& profiles);
    // A hand-over neither kept nor put back, and what its record says.
    bool Pending() const;
    std::set<std::string> Interfaces() const;
    std::set<std::string> ProfilesBefore() const;

    // Kept: ifupdown's DHCP clients for the interfaces end (without a word to the server, so the lease
    // and the address stay until the service's own setting replaces them); left running, they would put
    // the address back on a NIC that is now a port of the bridge.
    void StopClients();

    // Putting it back, in steps, as the file and the service's profiles have to be put back in turn: the
    // recorded file written back and the service restarted, which leaves the interfaces to ifupdown
    // again; then each of them that has lost its address brought up by ifup. Forget removes the record
    // (the hand-over kept, or put back): until then a put-back cut short is done again by the next one.
    void RestoreFile();
    void BringUp(const KernelNetwork& kernel);
    void Forget();

    // ifupdown's own `program` (kIfup, kIfdown) run for `interface`, configured anew even where ifupdown
    // counts it as so already; throws with what it said when it fails.
    static void Run(const char* program, const std::string& interface);

  private:
    nlohmann::json Record() const;
    void StopClients(const std::string& interface);
    HostFiles _files;
};

}  // namespace LinuxHost
