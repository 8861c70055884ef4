// The restore menu's entries as the host's management interface decides them, and the factory restore's
// order of work, its failure lines and its record.
#include <gtest/gtest.h>

#include "../network/WatchedDialog.h"
#include "recovery/DoRestoreNetworkDialog.h"
#include "recovery/NetworkRestoreWindow.h"
#include "recovery/RestoreNetworkDialog.h"
#include "text/StringIds.h"

namespace Kovo {
namespace {

using namespace Testing;
using nlohmann::json;

const std::string kPowerOff = "/sbin/powerOffVms: powerOffVms";
const std::string kEvent =
    "event: @&!*@*@(obs.user.kovo.factory.network.restored)Restoring factory network settings";

class NetworkRestore : public NetworkDialogs {
  protected:
    void Use(const std::string& scenario) {
        scratch_ = std::make_unique<ScratchStore>(Booted(Scenario(scenario)));
        host_ = std::make_unique<RecordingHost>(scratch_->Get(), true);
    }
    void Fault(const std::string& operation, const std::string& text = "broken") {
        scratch_->Fault(operation, text);
    }
    std::vector<unsigned> Entries() {
        TestRootFrame root;
        NetworkRestoreWindow window(&root, *host_);
        std::vector<unsigned> ids;
        for (const auto& row : window.Table()) ids.push_back(row.id);
        return ids;
    }

    std::unique_ptr<ScratchStore> scratch_;
    std::unique_ptr<RecordingHost> host_;
};

TEST_F(NetworkRestore, AHostThatCannotTellItsConnectionOffersTheFactoryRestoreAlone) {
    // Which host offers which entries is the e2e tests'; whatever keeps the answer back, the window
    // still opens, with the factory restore alone.
    Use("dvs");
    Fault("ZenkNic.GetConnectionPoint");
    EXPECT_EQ(Entries(), (std::vector<unsigned>{StringId::RestoreNetworkEntry}));
    EXPECT_TRUE(host_->Made("error: Could not determine if a DVS was in use: broken"));
    Use("dvs");
    scratch_->Get()->Update([](json& d) { d["network"]["zenkNics"] = json::array(); });
    EXPECT_EQ(Entries(), (std::vector<unsigned>{StringId::RestoreNetworkEntry}));
    EXPECT_TRUE(host_->Made("error: Could not locate the management interface"));
}

TEST_F(NetworkRestore, HostThatCannotTellItsMachinesIsReportedAndTheWindowStays) {
    Use("default");
    Fault("ResourceInfo.HasRunningVirtualMachines", "inventory unavailable");
    const json before = scratch_->At("/");
    // Enter on the factory restore, F11, Enter on the report, Esc out of the window.
    Type("\n" + kF11 + "\n" + Keys::kEsc);
    TestRootFrame root;
    NetworkRestoreWindow window(&root, *host_);
    EXPECT_EQ(window.RunModal(), 1);
    EXPECT_TRUE(host_->Made("error: Restore Network Settings failed: inventory unavailable"));
    EXPECT_TRUE(host_->Made(kEvent));
    EXPECT_EQ(scratch_->At("/"), before);
}

TEST_F(NetworkRestore, FailedAutoConfigurationIsShownAndTheRestoreStillEnds) {
    Use("default");
    Fault("NetworkInfo.AutoConfigNetwork", "no uplink");
    auto ran = Run<DoRestoreNetworkDialog>("\n\n", *host_);
    const std::string shown = ScreenText(ran->Handle());  // when the loop ended
    EXPECT_EQ(ran.result, 1);
    EXPECT_NE(shown.find("Powering Off VMs. Done."), std::string::npos) << shown;
    EXPECT_NE(shown.find("Auto-configuring network. Failed."), std::string::npos) << shown;
    EXPECT_EQ(host_->From(kPowerOff),
              (Calls{kPowerOff, "NetworkInfo.DisableNetDumper", "log: Clearing Network Config",
                     "NetworkInfo.ClearNetworkConfig", "log: Auto-Configuring Network",
                     "NetworkInfo.AutoConfigNetwork", "error: Error auto-configuring network",
                     "error: Clearing and auto-configuring the network failed: no uplink"}));
    // The clear went through before the failure: nothing is put back.
    EXPECT_EQ(scratch_->At("/network/switches"), json::array());
}

TEST_F(NetworkRestore, DumpCollectorThatStaysOnDoesNotStopTheRestore) {
    Use("default");
    scratch_->Get()->Update([](json& d) {
        d["vms"] = json::array();
        d["network"]["netDumper"]["enabled"] = true;
    });
    Fault("NetworkInfo.DisableNetDumper", "collector busy");
    auto ran = Run<DoRestoreNetworkDialog>("\n", *host_);
    const std::string shown = ScreenText(ran->Handle());
    EXPECT_EQ(ran.result, 1);
    EXPECT_TRUE(host_->Made("error: Disabling the network dump collector failed: collector busy"));
    EXPECT_NE(shown.find("Auto-configuring network. Done."), std::string::npos) << shown;
    EXPECT_FALSE(host_->Made(kPowerOff));
    EXPECT_EQ(scratch_->At("/network/zenkNics/0/name"), "zk0");
    EXPECT_EQ(scratch_->At("/network/zenkNics/0/ipConfig/ipv4/mode"), "dhcp");
}

TEST_F(NetworkRestore, EnterOnTheQuestionDoesNothingAndEscLeavesWithoutARecord) {
    Use("default");
    const json before = scratch_->At("/network");
    auto left = Run<RestoreNetworkDialog>("\n" + Keys::kEsc, *host_);
    EXPECT_EQ(left.result, 0);
    EXPECT_FALSE(host_->Made(kEvent));
    EXPECT_EQ(scratch_->At("/network"), before);
}

}  // namespace
}  // namespace Kovo
