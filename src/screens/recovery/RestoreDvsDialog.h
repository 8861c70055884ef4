#pragma once

#include <exception>
#include <string>
#include <vector>

#include "frames/Dialog.h"
#include "frames/HostAccess.h"
#include "platform/hostctl/VirtualSwitchInfo.h"

namespace HostCtl::Network {
class ZenkNic;
}

namespace Kovo {

// "Restore xDS": a new host-local port on the management interface's distributed switch, a copy of the
// interface's port with the VLAN, the blocked setting and the uplinks the operator gives, and the
// interface moved onto it; the old port stays as it was. Refused on another maker's switch. Enter (1)
// once restored, Esc (0) with nothing changed; 0 also after a failure, which is logged and shown.
class RestoreDvsDialog : public Dialog {
  public:
    RestoreDvsDialog(Frame* parent, HostCtl::Network::ZenkNic& nic, HostAccess& host);

    int HandleKey() override;

    // The VLAN field's text as a port's VLAN: digits making 0 to 4094. False for anything else, empty too.
    static bool ReadVlan(const std::string& text, int& vlanId);
    // "hlp-" + the interface's name + "#" + one more than the highest number of the switch's
    // host-local port names (1 when none has a number).
    static std::string HostLocalPortName(const std::string& nicName,
                                         const std::vector<std::string>& portNames);

  protected:
    bool OnKey(int key) override;

  private:
    // Reads the port and its switch; kNoTextId, or the text that refuses the restore.
    unsigned ReadPort();
    void ChooseUplinks();
    // Enter: checks the values, asks when no uplink is chosen, then restores.
    void Accept();
    void Restore(int vlanId);
    void Fail(const std::string& line, const std::exception& e);

    HostCtl::Network::ZenkNic& _nic;
    HostAccess& _host;
    std::string _dvsName;
    HostCtl::Network::DvPortProperties _port;
    std::vector<std::string> _portNames;
    // The switch's uplinks this host has, and those of them the new port is to use.
    std::vector<std::string> _available;
    std::vector<std::string> _chosen;
    unsigned _refusal = kNoTextId;
    // Owned by the dialog's items; null when the restore is refused.
    InputItem* _vlan = nullptr;
    CheckItem* _unblock = nullptr;
    Item* _uplinksEntry = nullptr;
};

}  // namespace Kovo
