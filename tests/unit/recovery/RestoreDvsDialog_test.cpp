// Restore xDS over a scratch store: the host-local port's name, the VLAN rule, what the new port copies,
// an empty uplink choice, and each failure of the host. A port made from the values typed, the refusals
// and the operator's VLAN corrections are the end-to-end tests' (NetworkRestoreDvs).
#include "recovery/RestoreDvsDialog.h"

#include <gtest/gtest.h>

#include "../network/WatchedDialog.h"

namespace Kovo {
namespace {

using namespace Testing;
using nlohmann::json;

TEST(HostLocalPortName, OneAfterTheHighestNumberOfAnyHostLocalPortName) {
    using Names = std::vector<std::string>;
    const struct {
        Names names;
        const char* next;
    } cases[] = {
        {{}, "hlp-zk0#1"},
        {{"dvport-mgmt", "hlp-zk0#x", "hlp-other#", "hlp-zk0#"}, "hlp-zk0#1"},
        {{"hlp-zk0#1", "hlp-zk0#4", "hlp-other#", "hlp-zk0#x", "old-hlp-zk0#9"}, "hlp-zk0#5"},
        // Any middle part counts, '#' within it too; the digits are those after the last '#'.
        {{"hlp-zk0#2", "hlp-other#7"}, "hlp-zk0#8"},
        {{"hlp-#3", "hlp-a#b#12"}, "hlp-zk0#13"},
        {{"hlp-a#009", "hlp-a#10"}, "hlp-zk0#11"},
        {{"hlp-a#99"}, "hlp-zk0#100"},
        // Not host-local names: case, the hyphen, anything after the digits.
        {{"HLP-a#3", "hlp_a#3", "hlpa#3", "hlp-a#3 ", "hlp-a#3x"}, "hlp-zk0#1"},
        // A number no integer holds is still counted.
        {{"hlp-a#99999999999999999999"}, "hlp-zk0#100000000000000000000"},
    };
    for (const auto& c : cases) EXPECT_EQ(RestoreDvsDialog::HostLocalPortName("zk0", c.names), c.next);
}

TEST(ReadVlan, APortTakesZeroTo4094) {
    const struct {
        const char* text;
        bool taken;
        int id;
    } cases[] = {{"0", true, 0},  {"4094", true, 4094}, {"0012", true, 12}, {"4095", false, -1},
                 {"", false, -1}, {"9999", false, -1},  {"12a", false, -1}, {"00000", false, -1}};
    for (const auto& c : cases) {
        int id = -1;
        EXPECT_EQ(RestoreDvsDialog::ReadVlan(c.text, id), c.taken) << '"' << c.text << '"';
        EXPECT_EQ(id, c.id) << '"' << c.text << '"';
    }
}

const std::string kDown = Keys::kDown, kUp = Keys::kUp;
// Enter on the dialog's uplinks entry, two below the VLAN field, opens the chooser.
const std::string kToChooser = kDown + kDown + "\n\t";

class RestoreDvs : public NetworkDialogs {
  protected:
    void SetUp() override {
        NetworkDialogs::SetUp();
        // Curses paints the blank standard screen over everything at the first key read; done here, it
        // leaves a report shown before the dialog's first key on the screen.
        refresh();
    }
    void Make(const std::string& scenario) {
        store_ = std::make_unique<ScratchStore>(Booted(Scenario(scenario)));
        host_ = std::make_unique<RecordingHost>(store_->Get(), true);
        nic_ = host_->Network()->GetManagementInterface();
        ASSERT_NE(nic_, nullptr) << scenario << " has no management interface";
        before_ = Network();
    }
    Ran<RestoreDvsDialog> Open(const std::string& keys) { return Run<RestoreDvsDialog>(keys, *nic_, *host_); }
    void Fault(const std::string& operation) { store_->Fault(operation, "the host said no"); }
    json Network() const { return store_->At("/network"); }
    json Port(std::size_t index) const { return Network()["dvs"][0]["ports"][index]; }
    std::string Connected() const { return Network()["zenkNics"][0]["connection"]["port"]; }

    std::unique_ptr<ScratchStore> store_;
    std::unique_ptr<RecordingHost> host_;
    std::unique_ptr<HostCtl::Network::ZenkNic> nic_;
    json before_;
};

TEST_F(RestoreDvs, UncheckedTheBlockedSettingIsCopiedAndTheUplinksStartAsThePortsOwn) {
    Make("dvs-host-local-ports");
    auto d = Open(kDown + " \n");
    EXPECT_EQ(d.result, 1);
    EXPECT_EQ(Port(7)["vlanId"], 20);
    EXPECT_EQ(Port(7)["blocked"], true);
    EXPECT_EQ(Port(7)["uplinks"], json({"zennic0"}));
}

TEST_F(RestoreDvs, NoUplinkChosenIsAskedAboutAndEscGoesBack) {
    Make("dvs-host-local-ports");
    // zennic0 unchecked; Enter asks, Esc returns to the dialog, Enter asks again and Enter goes on.
    auto d = Open(kToChooser + " \n" + kUp + "\n\t" + Keys::kEsc + "\n\t\n");
    EXPECT_EQ(d.result, 1);
    EXPECT_TRUE(d->Showed("xDS Uplinks: Warning"));
    EXPECT_EQ(Network()["dvs"][0]["ports"].size(), 8u);
    EXPECT_EQ(Port(7)["uplinks"], json::array());
    EXPECT_EQ(Connected(), "17");
}

TEST_F(RestoreDvs, FailuresAreLoggedShownAndLeaveWhatWasDone) {
    // Read at opening, the port's failure is reported before the dialog takes a key; the others after
    // Enter. A port made stays, and the interface moves only onto a port with its uplinks set.
    const struct {
        const char* fault;
        std::string keys;
        const char* line;
        std::size_t ports;
    } cases[] = {
        {"DVPort.GetProperties", "\n", "error: Reading the xDS management port failed: the host said no", 7},
        {"VirtualSwitchInfo.AddDvsHostLocalPort", "\n\t\n",
         "error: Unable to create Host Local Port: the host said no", 7},
        {"ZenkNic.ConnectToDvPort", "\n\t\n",
         "error: Moving zk0 to host local port hlp-zk0#5 failed: the host said no", 8},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.fault);
        Make("dvs-host-local-ports");
        Fault(c.fault);
        auto d = Open(c.keys);
        EXPECT_EQ(d.result, 0);
        EXPECT_TRUE(d->Showed("Unable to restore xDS. Check logs for details."));
        EXPECT_TRUE(host_->Made(c.line));
        EXPECT_TRUE(host_->StartingWith("event:").empty());
        EXPECT_EQ(Network()["dvs"][0]["ports"].size(), c.ports);
        EXPECT_EQ(Connected(), "10");
        EXPECT_EQ(Port(0), before_["dvs"][0]["ports"][0]);
    }
}

}  // namespace
}  // namespace Kovo
