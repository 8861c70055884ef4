#pragma once

#include <chrono>
#include <exception>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/hostctl/UniqueFd.h"
#include "platform/linux/HostNames.h"
#include "platform/linux/IfupdownHandover.h"
#include "platform/linux/KernelNetwork.h"
#include "platform/linux/ManagementProfiles.h"
#include "platform/linux/NetworkManagerClient.h"

namespace LinuxHost {

// The host's network as its network service runs it, shared by every network object of the Linux
// platform: what the service and the kernel say now, the management network read from that, and the way
// a changed one is put in place. While a change is open (a checkpoint the service rolls back by itself),
// changed settings only go into the profiles; Activate puts them all in place at once.
class NmNetwork {
  public:
    NmNetwork(NetworkManagerClient client, std::shared_ptr<const KernelNetwork> kernel, HostFiles files);

    // Whether a network service answers on the host's bus; the platform serves the network from it only then.
    static std::shared_ptr<NmNetwork> IfRunning(std::shared_ptr<const KernelNetwork> kernel, HostFiles files);

    // The service's view, read afresh.
    std::vector<NmDevice> Devices();
    std::vector<NmProfile> Profiles();
    // The NICs: the wired devices the service manages, and the one ifupdown runs the management network on.
    std::vector<NmDevice> Nics();

    // The management network. On a host whose network the console has not set up (ConsoleMade() false),
    // the one that the profile holding the management address describes: the first change replaces that
    // profile with the console's own.
    ManagementNetwork Management();
    bool ConsoleMade();
    // The interface that holds the management address now; "" when none does.
    std::string ManagementInterface();
    // What runs on that interface as the service has it: leases' name servers and domains included.
    NmIpConfig RunningIp(int family);
    // The profile (and its NICs) that the first change takes the management network from; nullopt when
    // the console's own profiles hold it, or nothing does.
    std::optional<NmProfile> ForeignHolder();
    // The NIC that holds the management address when ifupdown configures it (the service leaves it
    // alone); "" otherwise. The first change hands it to the service, and puts it back if not kept.
    std::string IfupdownNic();

    // Makes the profiles say `network`, and (unless a change is open) puts it in place.
    void Store(const ManagementNetwork& network);
    // Brings the management network up as its profiles say (or, on a NIC ifupdown configures, as
    // ifupdown does); throws when the service could not.
    void Activate();
    // Takes the management interface down (its profile, or ifupdown's stanza, stays).
    void Deactivate();
    // Removes the console's profiles, and with them the management network they made.
    void Clear();

    // A change the service undoes by itself after `rollbackSeconds` unless it is kept. The host's name,
    // its name table and the IPv6 switch are outside the service's reach: they are put back here when the
    // change is not kept (rolled back, or kept too late), and the service puts back the rest even when the
    // console is gone.
    // One console changes the network at a time. A change that a console left open when it ended is
    // rolled back first: nobody is left to keep it, and the service refuses a second one meanwhile.
    // A management NIC that ifupdown configures is handed to the service before the checkpoint opens.
    void OpenChange(int rollbackSeconds);
    bool ChangeOpen() const { return _checkpoint.has_value(); }
    int SecondsLeft() const;
    void Keep();
    // The interfaces the service put back.
    std::vector<std::string> RollBack();

    HostNames& Names() { return _names; }

    // The file that switches IPv6 for the next boot.
    static constexpr const char* kIpv6Switch = "/etc/sysctl.d/90-kovo-ipv6.conf";

    // Puts back a take-over from ifupdown that a console left neither kept nor undone (killed, or the host
    // restarted): ifupdown has its NIC again. Nothing when there is none, or another console's is open.
    void FinishAbandonedChange();

  private:
    // ManagementInterface() and ForeignHolder() among devices the caller has read already.
    std::string ManagementInterface(const std::vector<NmDevice>& devices);
    std::optional<NmProfile> ForeignHolder(const std::vector<NmDevice>& devices);
    std::string IfupdownNic(const std::vector<NmDevice>& devices);
    // The bridge or bond `interface` is a port of, the one that is a port of, and so on up.
    std::vector<std::string> Controllers(const std::string& interface) const;
    // The NICs among `devices`, and the bridges, bonds and VLANs the kernel has built on them.
    std::vector<std::string> OnNics(const std::vector<NmDevice>& devices) const;
    // Hands `nic` over from ifupdown and waits until the service runs it (as it found it).
    void TakeFromIfupdown(const std::string& nic);
    // Puts back the host's name, its name table, the IPv6 switch and the other tools' profiles the change
    // stopped from starting by themselves, as they were when the change opened.
    void PutBackUncovered();
    // PutBackUncovered() on a way out that has a failure of its own to tell: this one goes to the log.
    void PutBackUncoveredBeside();
    // Whether the service has rolled `checkpoint` back, or still will (it is there, its time not up).
    bool RolledBackOrWillBe(const std::string& checkpoint);
    // Gives ifupdown back what a change that was not kept took from it.
    void PutBackIfupdown();
    // After `failure`, gives ifupdown back a take-over that is pending; one that fails too is added to the
    // failure's words (the caller rethrows the failure otherwise).
    void PutBackAfter(const std::exception& failure);
    // Restarts the service through the service manager, and waits until a new one answers on the bus.
    void RestartService();
    // Throws, before anything is touched, when the management address sits on a NIC the service was told
    // to leave alone other than by ifupdown's file (which a change takes it over from): the service cannot
    // make it a port of the bridge, so a change would fail half-way.
    void RefuseUnmanagedManagement();
    // Holds the host's change record, after rolling back what a console that ended left in it.
    void ClaimChangeRecord();
    void ReleaseChangeRecord();
    // Releases the change record as the scope ends, on every path out.
    struct ChangeRecordHeld {
        NmNetwork& network;
        explicit ChangeRecordHeld(NmNetwork& held) : network(held) {}
        ~ChangeRecordHeld() { network.ReleaseChangeRecord(); }
        ChangeRecordHeld(const ChangeRecordHeld&) = delete;
        ChangeRecordHeld& operator=(const ChangeRecordHeld&) = delete;
    };

    NetworkManagerClient _client;
    HostFiles _files;
    std::shared_ptr<const KernelNetwork> _kernel;
    HostNames _names;
    IfupdownHandover _ifupdown;
    std::optional<std::string> _hostnameBefore, _hostsBefore;
    std::optional<std::string> _ipv6SwitchBefore;  // nullopt: there was none
    std::vector<std::string> _stoppedProfiles;     // other tools' profiles this change stopped starting
    std::optional<std::string> _checkpoint;
    std::chrono::steady_clock::time_point _rollbackAt;
    std::map<std::string, std::string> _interfaces;  // device path to name, when the change opened
    std::optional<std::string> _takenDown;           // another tool's profile Deactivate took down
    std::optional<std::string> _ifupdownDown;        // ifupdown's NIC Deactivate took down
    HostCtl::UniqueFd _record;                       // locked while this console's change is open
};

}  // namespace LinuxHost
