// The real console on the lab's host, whose network NetworkManager runs: an operator's change of the
// management network taken over from another tool's profile, kept, refused, failed, and cut off with the
// console killed, each read back from NetworkManager and the kernel of the lab's host.
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "LabConsole.h"

namespace {

using namespace std::chrono_literals;
using KovoE2e::ConsoleDriver;
using KovoLab::KernelIpv4;
using KovoLab::kKeepQuestion;
using KovoLab::kPassword;
using KovoLab::Lab;
using KovoTerm::Key;
using KovoTerm::TermSession;
using KovoTerm::VirtualTerminal;

constexpr const char* kRestoredTitle = "Network Configuration Restored";
constexpr const char* kTakeOver = "runs on the profile \"Wired e0\"";

bool HasLease(const std::string& interface) {
    return KernelIpv4(interface).rfind("192.168.88.1", 0) == 0;
}

class LabConsole : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { KovoLab::InstallConsole(); }
    void SetUp() override {
        Lab(KovoLab::kReset);
        ASSERT_EQ(Lab(KovoLab::kForeignDhcp), "up");
        ASSERT_TRUE(KovoE2e::WaitFor([] { return HasLease("e0"); }, 30s)) << KernelIpv4("e0");
        ASSERT_TRUE(StartConsole()) << term_->Dump();
    }
    // A console on the lab host's terminal, at its welcome screen.
    bool StartConsole() {
        term_ = std::make_unique<TermSession>(KovoLab::ConsoleOnLab(SanitizerLog()));
        steps_ = std::make_unique<KovoLab::WindowSteps>(*term_);
        return term_->WaitForText(KovoE2e::kWelcomeKeys, 60s);
    }
    void TearDown() override {
        if (term_ && term_->Running()) {
            term_->Signal(SIGKILL);
            term_->WaitExit(10s);
        }
        for (const auto& entry : std::filesystem::directory_iterator(KOVO_LAB_DIR)) {
            if (entry.path().filename().string().rfind("sanitizer", 0) != 0) continue;
            std::ifstream report(entry.path());
            ADD_FAILURE() << "the console's sanitizer report:\n"
                          << std::string(std::istreambuf_iterator<char>(report), {});
            std::filesystem::remove(entry.path());
        }
        Lab(KovoLab::kReset);
    }
    ConsoleDriver Driver() { return ConsoleDriver(*term_); }
    static std::string SanitizerLog() { return std::string(KOVO_LAB_DIR) + "/sanitizer"; }

    KovoLab::WindowSteps& Steps() { return *steps_; }
    // IPv4 set to a static address of the lab's network in the window, and the window left with Y.
    bool ApplyStatic(const std::string& address) {
        return Steps().ApplyStatic(kPassword, address, "255.255.255.0", "192.168.88.1");
    }

    std::unique_ptr<TermSession> term_;
    std::unique_ptr<KovoLab::WindowSteps> steps_;
};

TEST_F(LabConsole, AStaticAddressKeptIsWhatTheHostRunsOnTheConsolesOwnBridge) {
    ASSERT_TRUE(ApplyStatic("192.168.88.60")) << term_->Dump();
    EXPECT_NE(Steps().confirmation.find(kTakeOver), std::string::npos) << Steps().confirmation;
    // The change is in place while the question stands, and the tests ran on it.
    ASSERT_TRUE(term_->WaitForText(kKeepQuestion, 90s)) << term_->Dump();
    ASSERT_TRUE(term_->WaitForText("Pinging address (192.168.88.1). OK.", 60s)) << term_->Dump();
    EXPECT_EQ(KernelIpv4("xswitch0"), "192.168.88.60/24");
    term_->Type("y");
    ASSERT_TRUE(term_->WaitForTextGone(kKeepQuestion, 30s)) << term_->Dump();
    ASSERT_TRUE(term_->WaitForTextGone(KovoE2e::kWindowMark, 30s)) << term_->Dump();

    EXPECT_EQ(Lab("nmcli -g ipv4.method,ipv4.addresses,ipv4.gateway connection show 'Management Network'"),
              "manual\n192.168.88.60/24\n192.168.88.1");
    EXPECT_EQ(Lab("ip -o link show dev e0 | grep -o 'master [^ ]*'"), "master xswitch0");
    EXPECT_EQ(Lab("nmcli -g connection.autoconnect connection show 'Wired e0'"), "no");
    // Kept: still there once the time it had to be kept in is over.
    std::this_thread::sleep_for(5s);
    EXPECT_EQ(Lab("nmcli -g NAME,DEVICE connection show --active | sort | paste -sd,"),
              "Management Network port e0:e0,Management Network:xswitch0");
    term_->Press(Key::Escape);
    EXPECT_TRUE(Driver().AtWelcome()) << term_->Dump();
    EXPECT_TRUE(term_->WaitForText("192.168.88.60", 30s)) << term_->Dump();
}

TEST_F(LabConsole, NoToTheQuestionPutsThePreviousNetworkBackAndSaysWhere) {
    ASSERT_TRUE(ApplyStatic("192.168.88.61")) << term_->Dump();
    ASSERT_TRUE(term_->WaitForText(kKeepQuestion, 90s)) << term_->Dump();
    EXPECT_EQ(KernelIpv4("xswitch0"), "192.168.88.61/24");
    term_->Type("n");
    ASSERT_TRUE(term_->WaitForText(kRestoredTitle, 60s)) << term_->Dump();
    EXPECT_TRUE(term_->WaitForText("Interfaces put back:", 10s)) << term_->Dump();
    EXPECT_TRUE(term_->Screen().Contains("e0")) << term_->Dump();
    EXPECT_TRUE(KovoE2e::WaitFor([] { return HasLease("e0"); }, 30s)) << KernelIpv4("e0");
    EXPECT_EQ(Lab("nmcli -g NAME connection show"), "Wired e0");
    EXPECT_EQ(Lab("nmcli -g connection.autoconnect connection show 'Wired e0'"), "yes");
    EXPECT_EQ(KernelIpv4("xswitch0"), "");
}

// The host cut off and nobody left to answer: the network service puts the old network back by itself.
TEST_F(LabConsole, AChangeWhoseConsoleIsKilledUndoesItself) {
    ASSERT_TRUE(ApplyStatic("192.168.88.62")) << term_->Dump();
    ASSERT_TRUE(term_->WaitForText(kKeepQuestion, 90s)) << term_->Dump();
    EXPECT_EQ(KernelIpv4("xswitch0"), "192.168.88.62/24");
    ASSERT_TRUE(term_->Signal(SIGKILL));
    term_->WaitExit(10s);
    // The change waits two minutes to be kept.
    EXPECT_TRUE(KovoE2e::WaitFor([] { return HasLease("e0"); }, 200s))
        << KernelIpv4("e0") << " / " << KernelIpv4("xswitch0");
    EXPECT_EQ(KernelIpv4("xswitch0"), "");
    EXPECT_EQ(Lab("nmcli -g NAME connection show"), "Wired e0");
}

// The console that opened a change is gone, and the next one (as its unit starts it again) changes the
// network before the service's time runs out: the left change is undone first, and the new one is kept.
TEST_F(LabConsole, AChangeLeftByAKilledConsoleGivesWayToTheNextConsolesChange) {
    ASSERT_TRUE(ApplyStatic("192.168.88.64")) << term_->Dump();
    ASSERT_TRUE(term_->WaitForText(kKeepQuestion, 90s)) << term_->Dump();
    ASSERT_TRUE(term_->Signal(SIGKILL));
    term_->WaitExit(10s);
    ASSERT_TRUE(StartConsole()) << term_->Dump();
    // The window shows the left change, which is what the host runs until it is undone.
    ASSERT_TRUE(Steps().OpenNetworkWindow(kPassword) &&
                Steps().OpenEntry(KovoE2e::kIpv4Downs, KovoE2e::kStaticChoice))
        << term_->Dump();
    ASSERT_TRUE(term_->Screen().Contains("[ 192.168.88.64")) << term_->Dump();
    ASSERT_TRUE(Steps().Choose(0, Key::Down, {"192.168.88.65"}) &&
                Steps().AcceptAndApply(KovoE2e::kStaticChoice))
        << term_->Dump();
    ASSERT_TRUE(Steps().KeepWhenAsked()) << term_->Dump();
    EXPECT_EQ(Lab("nmcli -g ipv4.addresses connection show 'Management Network'"), "192.168.88.65/24");
    EXPECT_EQ(KernelIpv4("xswitch0"), "192.168.88.65/24");
    // Taken over from the profile the first change had already taken: that one is still there.
    EXPECT_EQ(Lab("nmcli -g connection.autoconnect connection show 'Wired e0'"), "no");
}

// A change the host cannot bring up (this kernel has no VLAN links) fails when it is put in place, and the
// previous network comes back at once.
TEST_F(LabConsole, AChangeThatCannotComeUpIsRolledBackAndSaysSo) {
    constexpr const char* kVlanMark = "VLAN ID (1-4094, or 4095 to access all VLANs):";
    ASSERT_TRUE(Steps().OpenNetworkWindow(kPassword)) << term_->Dump();
    ASSERT_TRUE(Steps().OpenEntry(KovoE2e::kVlanDowns, kVlanMark)) << term_->Dump();
    ASSERT_TRUE(Steps().TypeShown("20")) << term_->Dump();
    ASSERT_TRUE(Steps().AcceptAndApply(kVlanMark)) << term_->Dump();
    ASSERT_TRUE(term_->WaitForText("Putting the network configuration in place failed", 90s))
        << term_->Dump();
    ASSERT_TRUE(Driver().Acknowledge(KovoE2e::kErrorTitle)) << term_->Dump();
    ASSERT_TRUE(term_->WaitForText(kRestoredTitle, 60s)) << term_->Dump();
    EXPECT_TRUE(KovoE2e::WaitFor([] { return HasLease("e0"); }, 30s)) << KernelIpv4("e0");
    EXPECT_EQ(Lab("nmcli -g NAME connection show"), "Wired e0");
    EXPECT_EQ(KernelIpv4("xswitch0"), "");
}

}  // namespace

// The name side in one change: name servers, search domains and the host's name, as the network service
// and the host then have them, and the change's tests run against them.
TEST_F(LabConsole, NameServersSearchDomainsAndHostNameKept) {
    constexpr const char* kDnsMark = "Use the following DNS server addresses and hostname:";
    constexpr const char* kSuffixMark = "Use spaces or commas";
    ASSERT_TRUE(Steps().OpenNetworkWindow(kPassword)) << term_->Dump();
    ASSERT_TRUE(Steps().OpenEntry(KovoE2e::kDnsDowns, kDnsMark)) << term_->Dump();
    ASSERT_TRUE(Steps().Choose(1, Key::Down, {"192.168.88.1", "192.168.88.2", "node7.lab.example"}))
        << term_->Dump();
    ASSERT_TRUE(Steps().Accept(kDnsMark)) << term_->Dump();
    ASSERT_TRUE(Steps().OpenEntry(KovoE2e::kSuffixDowns - KovoE2e::kDnsDowns, kSuffixMark)) << term_->Dump();
    ASSERT_TRUE(Steps().TypeShown("lab.example, other.example")) << term_->Dump();
    ASSERT_TRUE(Steps().AcceptAndApply(kSuffixMark)) << term_->Dump();
    ASSERT_TRUE(Steps().KeepWhenAsked()) << term_->Dump();
    for (const char* line : {"Pinging address (192.168.88.1). OK.", "Pinging address (192.168.88.2). OK.",
                             "Resolving hostname (node7.lab.example). OK."})
        EXPECT_NE(Steps().kept.find(line), std::string::npos) << line << "\n" << Steps().kept;

    EXPECT_EQ(Lab("nmcli -g ipv4.dns,ipv4.dns-search,ipv4.ignore-auto-dns connection show "
                  "'Management Network'"),
              "192.168.88.1,192.168.88.2\nlab.example,other.example\nyes");
    EXPECT_EQ(Lab("hostname; cat /etc/hostname; grep '^127.0.1.1' /etc/hosts"),
              "node7\nnode7\n127.0.1.1\tnode7.lab.example node7");
}

// IPv4 off: refused while the name servers are IPv4 ones (the change rolled back), kept once they are gone.
TEST_F(LabConsole, Ipv4OffNeedsTheNameServersGoneWithIt) {
    constexpr const char* kNoneChoice = "Disable IPv4 configuration for management network";
    constexpr const char* kDnsMark = "Use the following DNS server addresses and hostname:";
    ASSERT_TRUE(Steps().OpenNetworkWindow(kPassword) && Steps().OpenEntry(KovoE2e::kIpv4Downs, kNoneChoice))
        << term_->Dump();
    ASSERT_TRUE(Steps().Choose(1, Key::Up) && Steps().AcceptAndApply(kNoneChoice)) << term_->Dump();
    ASSERT_TRUE(term_->WaitForText("IPv4 name servers need an IPv4 address on", 90s)) << term_->Dump();
    ASSERT_TRUE(Driver().Acknowledge(KovoE2e::kErrorTitle)) << term_->Dump();
    ASSERT_TRUE(term_->WaitForText(kRestoredTitle, 60s)) << term_->Dump();
    EXPECT_TRUE(KovoE2e::WaitFor([] { return HasLease("e0"); }, 30s)) << KernelIpv4("e0");
    EXPECT_EQ(Lab("nmcli -g NAME connection show"), "Wired e0");
    ASSERT_TRUE(Driver().Acknowledge(kRestoredTitle)) << term_->Dump();

    ASSERT_TRUE(Driver().AtWelcome() && Steps().OpenNetworkWindow(kPassword) &&
                Steps().OpenEntry(KovoE2e::kIpv4Downs, kNoneChoice))
        << term_->Dump();
    ASSERT_TRUE(Steps().Choose(1, Key::Up) && Steps().Accept(kNoneChoice)) << term_->Dump();
    ASSERT_TRUE(Steps().OpenEntry(KovoE2e::kDnsDowns - KovoE2e::kIpv4Downs, kDnsMark)) << term_->Dump();
    ASSERT_TRUE(Steps().Choose(1, Key::Down, {"", "", "labhost"}) && Steps().AcceptAndApply(kDnsMark))
        << term_->Dump();
    ASSERT_TRUE(Steps().KeepWhenAsked()) << term_->Dump();
    EXPECT_EQ(Lab("nmcli -g ipv4.method,ipv4.dns connection show 'Management Network'"), "disabled");
    EXPECT_EQ(KernelIpv4("xswitch0"), "");
}

// IPv6 static, then by router advertisements: the kernel runs the address each asked for.
TEST_F(LabConsole, Ipv6StaticAndThenAutoconfiguration) {
    constexpr const char* kIpv6Mark = "Static address #1";
    const auto globalIpv6 = [] {
        return Lab("ip -6 -o addr show dev xswitch0 scope global | awk '{print $4}' | paste -sd' '");
    };
    ASSERT_TRUE(Steps().OpenNetworkWindow(kPassword) && Steps().OpenEntry(KovoE2e::kIpv6Downs, kIpv6Mark))
        << term_->Dump();
    // It opens on the static choice: the profile taken over only has a link-local address.
    ASSERT_TRUE(Steps().Choose(0, Key::Down, {"fd88:6b6f:766f:88::60/64"})) << term_->Dump();
    Steps().Step(Key::Down, 3);
    ASSERT_TRUE(Steps().TypeShown("fd88:6b6f:766f:88::1") && Steps().AcceptAndApply(kIpv6Mark))
        << term_->Dump();
    ASSERT_TRUE(Steps().KeepWhenAsked()) << term_->Dump();
    EXPECT_EQ(
        Lab("nmcli -e no -g ipv6.method,ipv6.addresses,ipv6.gateway connection show 'Management Network'"),
        "manual\nfd88:6b6f:766f:88::60/64\nfd88:6b6f:766f:88::1");
    EXPECT_TRUE(KovoE2e::WaitFor([&] { return globalIpv6() == "fd88:6b6f:766f:88::60/64"; }, 30s))
        << globalIpv6();

    ASSERT_TRUE(Steps().OpenNetworkWindow(kPassword) && Steps().OpenEntry(KovoE2e::kIpv6Downs, kIpv6Mark))
        << term_->Dump();
    ASSERT_TRUE(Steps().Choose(2, Key::Up) && Steps().AcceptAndApply(kIpv6Mark)) << term_->Dump();
    ASSERT_TRUE(Steps().KeepWhenAsked()) << term_->Dump();
    EXPECT_EQ(Lab("nmcli -g ipv6.method connection show 'Management Network'"), "auto");
    // Beside the static address, which the choice keeps: one the router's advertisement made (a /64 of
    // the lab's prefix that nobody typed; DHCPv6's are /128).
    EXPECT_TRUE(KovoE2e::WaitFor(
        [&] {
            std::istringstream addresses(globalIpv6());
            for (std::string address; addresses >> address;)
                if (address.rfind("fd88:6b6f:766f:88:", 0) == 0 && address.ends_with("/64") &&
                    address != "fd88:6b6f:766f:88::60/64")
                    return true;
            return false;
        },
        30s))
        << globalIpv6();
}

// Restart Management Network on the profile another tool made: the service brings it up again, and the
// screen shows the address it has afterwards.
TEST_F(LabConsole, RestartBringsTheManagementProfileUpAgain) {
    // A static address: a lease's is not among the lines the restart shows.
    ASSERT_EQ(Lab("nmcli connection modify 'Wired e0' ipv4.method manual ipv4.addresses 192.168.88.70/24 "
                  "ipv4.gateway 192.168.88.1 && nmcli connection up 'Wired e0' >/dev/null && echo up"),
              "up");
    const auto activePath = [] {
        return Lab("nmcli -g GENERAL.DBUS-PATH connection show --active 'Wired e0'");
    };
    const std::string before = activePath();
    ASSERT_FALSE(before.empty());
    ASSERT_TRUE(Driver().LogIn(kPassword) && Driver().Select("Restart Management Network")) << term_->Dump();
    term_->Press(Key::Enter);
    ASSERT_TRUE(term_->WaitForText("Restart management network now?", 30s) && term_->WaitForQuiet(300ms, 30s))
        << term_->Dump();
    term_->Press(Key::F11);
    // Done twice: stopping, then starting with the addresses it has.
    ASSERT_TRUE(term_->WaitFor(
        [](const VirtualTerminal& screen) {
            int done = 0;
            for (int row = 0; row < screen.Rows(); ++row)
                if (screen.RowText(row).find("Done.") != std::string::npos) ++done;
            return done == 2;
        },
        90s))
        << term_->Dump();
    EXPECT_TRUE(term_->Screen().Contains("IP address is  192.168.88.70")) << term_->Dump();
    const std::string after = activePath();
    EXPECT_FALSE(after.empty());
    EXPECT_NE(after, before);
    EXPECT_EQ(KernelIpv4("e0"), "192.168.88.70/24");
}

// Test Management Network pings through the management interface and resolves through the hosts file.
TEST_F(LabConsole, TheNetworkTestPingsAndResolvesOnTheHost) {
    ASSERT_TRUE(Driver().LogIn(kPassword) && Driver().Select("Test Management Network")) << term_->Dump();
    term_->Press(Key::Enter);
    ASSERT_TRUE(term_->WaitForText("Ping Address #1", 30s) && term_->WaitForQuiet(300ms, 30s))
        << term_->Dump();
    // The gateway is the first address; one that nothing answers is the second.
    Steps().Step(Key::Down);
    ASSERT_TRUE(Steps().TypeShown("192.168.88.250")) << term_->Dump();
    term_->Press(Key::Enter);
    ASSERT_TRUE(term_->WaitFor(
        [](const VirtualTerminal& screen) {
            return screen.Contains("Resolving hostname (labhost).") && screen.Contains("<Enter> OK") &&
                   !screen.Contains("<Esc> Cancel");
        },
        90s))
        << term_->Dump();
    EXPECT_TRUE(term_->Screen().Contains("Pinging address (192.168.88.1). OK.")) << term_->Dump();
    EXPECT_TRUE(term_->Screen().Contains("Pinging address (192.168.88.250). Failed.")) << term_->Dump();
    EXPECT_TRUE(term_->Screen().Contains("Resolving hostname (labhost). OK.")) << term_->Dump();
}

// The factory network: the console's bridge on the first NIC with a link, by DHCP, kept like any change.
TEST_F(LabConsole, FactoryRestoreMakesADhcpBridgeOnTheFirstNic) {
    ASSERT_TRUE(ApplyStatic("192.168.88.63") && Steps().KeepWhenAsked()) << term_->Dump();
    ASSERT_TRUE(Driver().Select("Network Restore Options")) << term_->Dump();
    term_->Press(Key::Enter);
    ASSERT_TRUE(term_->WaitForText("Restore Network Settings", 30s) && term_->WaitForQuiet(300ms, 30s))
        << term_->Dump();
    term_->Press(Key::Enter);
    ASSERT_TRUE(term_->WaitForText("Restore Network Factory Settings", 30s) &&
                term_->WaitForQuiet(300ms, 30s))
        << term_->Dump();
    term_->Press(Key::F11);
    ASSERT_TRUE(Steps().KeepWhenAsked()) << term_->Dump();
    EXPECT_EQ(Lab("nmcli -g ipv4.method,ipv4.addresses connection show 'Management Network'"), "auto");
    EXPECT_EQ(Lab("ip -o link show dev e0 | grep -o 'master [^ ]*'"), "master xswitch0");
    EXPECT_TRUE(KovoE2e::WaitFor([] { return HasLease("xswitch0"); }, 30s)) << KernelIpv4("xswitch0");
}

// A host whose network ifupdown configures: the first change says what it takes over, and takes it.
class IfupdownLabConsole : public LabConsole {
  protected:
    void SetUp() override {
        Lab(KovoLab::kReset);
        ASSERT_EQ(Lab(KovoLab::kIfupdownStatic), "up");
        file_ = Lab("sha256sum </etc/network/interfaces");
        ASSERT_TRUE(StartConsole()) << term_->Dump();
    }
    // The static address typed over the one ifupdown gave, and the window left with Y.
    bool ApplyStatic(const std::string& address) {
        return Steps().OpenNetworkWindow(kPassword) &&
               Steps().OpenEntry(KovoE2e::kIpv4Downs, KovoE2e::kStaticChoice) &&
               Steps().Choose(0, Key::Down, {address, "255.255.255.0", "192.168.88.1"}) &&
               Steps().AcceptAndApply(KovoE2e::kStaticChoice);
    }
    std::string file_;
};

TEST_F(IfupdownLabConsole, TheChangeSaysWhatItTakesOverAndKeptLeavesTheNicToTheService) {
    ASSERT_TRUE(ApplyStatic("192.168.88.63")) << term_->Dump();
    for (const char* line : {"The management network runs on e0, which ifupdown configures",
                             "console's bridge xswitch0; a change not kept puts both back."})
        EXPECT_NE(Steps().confirmation.find(line), std::string::npos) << Steps().confirmation;
    ASSERT_TRUE(Steps().KeepWhenAsked()) << term_->Dump();
    EXPECT_NE(Steps().kept.find("Pinging address (192.168.88.1). OK."), std::string::npos) << Steps().kept;
    EXPECT_EQ(KernelIpv4("xswitch0"), "192.168.88.63/24");
    EXPECT_EQ(Lab("ip -o link show dev e0 | grep -o 'master [^ ]*'"), "master xswitch0");
    EXPECT_EQ(Lab("grep -c e0 /etc/network/interfaces"), "0");
    EXPECT_EQ(Lab("ls /var/lib/kovo"), "");
    term_->Press(Key::Escape);
    EXPECT_TRUE(term_->WaitForText("192.168.88.63", 30s)) << term_->Dump();
}

TEST_F(IfupdownLabConsole, NoToTheQuestionGivesTheNicBackToIfupdown) {
    ASSERT_TRUE(ApplyStatic("192.168.88.64")) << term_->Dump();
    ASSERT_TRUE(term_->WaitForText(kKeepQuestion, 90s)) << term_->Dump();
    EXPECT_EQ(KernelIpv4("xswitch0"), "192.168.88.64/24");
    term_->Type("n");
    ASSERT_TRUE(term_->WaitForText(kRestoredTitle, 60s)) << term_->Dump();
    EXPECT_EQ(Lab("sha256sum </etc/network/interfaces"), file_);
    EXPECT_EQ(Lab("nmcli -g GENERAL.STATE device show e0"), "10 (unmanaged)");
    EXPECT_EQ(KernelIpv4("e0"), "192.168.88.44/24");
    EXPECT_EQ(Lab("nmcli -g NAME connection show"), "");
}
