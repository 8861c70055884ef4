#include "recovery/DoRestoreNetworkDialog.h"

#include "frames/Footers.h"
#include "frames/Log.h"
#include "network/ChangeConfirmation.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/hostctl/NetworkInfo.h"
#include "platform/hostctl/ResourceInfo.h"
#include "recovery/RunningVMsWarningDialog.h"
#include "terminal/Colors.h"
#include "terminal/KeyReader.h"
#include "terminal/Keys.h"
#include "text/StringFactory.h"
#include "text/StringIds.h"
#include "text/TextArea.h"

namespace Kovo {

namespace {

std::string Text(unsigned id) {
    return GetStringFactory("en_US")->GetString(id);
}

}  // namespace

DoRestoreNetworkDialog::DoRestoreNetworkDialog(Frame* parent, HostAccess& host)
    : Dialog(parent, {70, 12, 5, StringId::RestoreNetworkTitle, StringId::RestoreNetworkWait, ""}),
      _host(host),
      _progress(AddTextArea(0, 0, Content()->Width(), Content()->Height(), kBlack)) {}

void DoRestoreNetworkDialog::Append(const std::string& text) {
    _text += text;
    _progress.SetText(_text);
    Refresh();
}

bool DoRestoreNetworkDialog::PowerOffVms() {
    Append(Text(StringId::PoweringOffVms) + " ");
    // Powered off as the operator agreed, not terminated: the machines get to shut down.
    if (_host.Run("/sbin/powerOffVms", {"powerOffVms"}) != 0) return false;
    Append(Text(StringId::Done) + "\n");
    return true;
}

void DoRestoreNetworkDialog::DisableNetDumper() {
    try {
        _host.Network()->DisableNetDumper();
    } catch (const HostCtl::Lib::HostCtlException& e) {
        // A dump collector left on does not stop the network coming back; the log says it stayed.
        LogFailure("Disabling the network dump collector failed: ", e);
    }
}

void DoRestoreNetworkDialog::AutoConfigure() {
    Append(Text(StringId::AutoConfiguringNetwork) + " ");
    std::unique_ptr<HostCtl::Network::NetworkInfo> network;
    // A host that can undo a change by itself keeps the factory network too only once it answers.
    std::unique_ptr<HostCtl::Network::NetworkChange> change;
    try {
        network = _host.Network();
        change = network->BeginChange(ChangeConfirmation::kRollbackSeconds);
        LogInfo("Clearing Network Config");
        network->ClearNetworkConfig();
        LogInfo("Auto-Configuring Network");
        network->AutoConfigNetwork();
    } catch (const HostCtl::Lib::HostCtlException& e) {
        Append(Text(StringId::Failed) + "\n");
        LogError("Error auto-configuring network");
        LogFailure("Clearing and auto-configuring the network failed: ", e);
        if (change) ChangeConfirmation(*this, _host, *change).Restore();
        return;
    }
    if (change && !ChangeConfirmation(*this, _host, *change).PutInPlaceAndAsk(*network, nullptr)) {
        Append(Text(StringId::Failed) + "\n");
        return;
    }
    Append(Text(StringId::Done) + "\n");
}

int DoRestoreNetworkDialog::HandleKey() {
    bool poweredOff = true;
    if (_host.Resources()->HasRunningVirtualMachines()) {
        if (RunningVMsWarningDialog(this).RunModal() == 0) return 0;
        poweredOff = PowerOffVms();
    }
    DisableNetDumper();
    if (poweredOff) {
        AutoConfigure();
    } else {
        // Machines still running keep their network: it is left as it is.
        Append(Text(StringId::Failed) + "\n");
        LogError("Error powering off VMs");
    }

    SetFooter(Footer::kOkAfterRestart);
    for (int key = 0; !IsEnter(key);) key = GetKey(this, true);
    return 1;
}

}  // namespace Kovo
