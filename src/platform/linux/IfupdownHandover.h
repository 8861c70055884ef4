#pragma once

#include <set>
#include <string>

#include "platform/linux/HostFiles.h"
#include "platform/linux/KernelNetwork.h"

namespace LinuxHost {

// What taking the management network over from ifupdown changes outside the network service's
// checkpoint: ifupdown's interfaces file (the service reads which NICs it may manage from it only as it
// starts, so the caller restarts the service after each step that writes it). The file as it was is
// recorded on disk first: a change that is not kept, a console killed before it was, or a host restarted
// meanwhile all find the record and put the file back.
class IfupdownHandover {
  public:
    static constexpr const char* kInterfaces = "/etc/network/interfaces";
    static constexpr const char* kRecord = "/var/lib/kovo/ifupdown-handover";
    static constexpr const char* kService = "NetworkManager.service";
    static constexpr const char* kIfup = "/sbin/ifup";
    static constexpr const char* kIfdown = "/sbin/ifdown";

    struct Record {
        std::set<std::string> interfaces;
        std::set<std::string> profiles;  // the service's profiles before, by UUID
        std::set<std::string> routed;    // the interfaces the host's IPv4 default route went out of
        std::string before, written;     // the file as it was, and as the hand-over wrote it
        bool keeping = false;            // the change was being kept when the record was last written
    };

    explicit IfupdownHandover(HostFiles files) : _files(std::move(files)) {}

    // Whether ifupdown's file has a stanza for `interface`.
    bool Configures(const std::string& interface) const;
    // Records the file, `profiles` and the interfaces' default routes (from `kernel`), then writes the
    // file without what configures `interfaces`.
    void HandOver(const std::set<std::string>& interfaces, const std::set<std::string>& profiles,
                  const KernelNetwork& kernel);
    // A hand-over neither kept nor put back, and what its record says (HostCtlException when it cannot
    // be read whole).
    bool Pending() const;
    Record Read() const;
    // Said before the change is made to stay: a console cut off from here on finishes keeping it rather
    // than putting ifupdown back.
    void MarkKeeping();
    // Kept: ifupdown's DHCP clients for the interfaces end (killed, so that they neither tell the server
    // nor take the address off as they go); left running, they would put their lease back on a NIC that
    // is now a port of the bridge.
    void StopClients();
    // The recorded file written back, unless it was changed since the hand-over wrote it (then it is left
    // as it is, and this throws saying so).
    void RestoreFile(const Record& record);
    // Each interface that has lost its address, or the default route it had, brought down and up again by
    // ifupdown, after ending any client still running for it.
    void BringUp(const Record& record, const KernelNetwork& kernel);
    // The record removed: the hand-over kept, or put back.
    void Forget();

    // ifupdown's own `program` (kIfup, kIfdown) run for `interface`, configured anew even where ifupdown
    // counts it as so already; throws with what it said when it fails.
    static void Run(const char* program, const std::string& interface);

  private:
    void Write(const Record& record);
    void StopClients(const std::string& interface);
    HostFiles _files;
};

}  // namespace LinuxHost
