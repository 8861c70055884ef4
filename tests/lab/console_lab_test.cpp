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
#include <string>
#include <thread>
#include <vector>

#include "ConsoleDriver.h"
#include "NetworkSteps.h"
#include "ShellSteps.h"
#include "TermSession.h"

namespace {

using namespace std::chrono_literals;
using KovoE2e::ConsoleDriver;
using KovoE2e::Quote;
using KovoTerm::Key;
using KovoTerm::TermSession;
using KovoTerm::VirtualTerminal;

constexpr const char* kPassword = "Lab-Pass1";
constexpr const char* kKeepQuestion = "Keep this network configuration?";
constexpr const char* kRestoredTitle = "Network Configuration Restored";
constexpr const char* kTakeOver = "runs on the profile \"Wired e0\"";

// A shell command inside the lab's host; its output without the last line end.
std::string Lab(const std::string& script) {
    return KovoE2e::Output(std::string(KOVO_NM_LAB) + " exec " + Quote(KOVO_LAB_DIR) + " -- sh -c " +
                           Quote(script) + " 2>&1");
}

std::string KernelIpv4(const std::string& interface) {
    return Lab("ip -4 -o addr show dev " + interface + " 2>/dev/null | awk '{print $4}' | paste -sd' '");
}

bool HasLease(const std::string& interface) {
    return KernelIpv4(interface).rfind("192.168.88.1", 0) == 0;
}

class LabConsole : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        // The lab's own account and the console's PAM service: both in the lab's /etc alone.
        Lab("cp " + Quote(KOVO_PAM_SERVICE) + " /etc/pam.d/kovo && echo root:" + kPassword + " | chpasswd");
    }
    void SetUp() override {
        // Another tool's network, as a Debian host with NetworkManager has it: a DHCP profile on e0.
        Lab("nmcli -g UUID connection show | xargs -r nmcli connection delete; rm -f "
            "/etc/sysctl.d/90-kovo-ipv6.conf");
        ASSERT_EQ(
            Lab("nmcli connection add type ethernet ifname e0 con-name 'Wired e0' ipv4.method auto "
                "ipv6.method ignore >/dev/null && nmcli connection up 'Wired e0' >/dev/null && echo up"),
            "up");
        ASSERT_TRUE(KovoE2e::WaitFor([] { return HasLease("e0"); }, 30s)) << KernelIpv4("e0");
        KovoTerm::SpawnOptions options;
        options.argv = {KOVO_NM_LAB, "exec", KOVO_LAB_DIR, "--", KOVO_LAB_CONSOLE};
        // In the sanitizer build a report goes to a file, not over the console's screen.
        options.environment = {{"ASAN_OPTIONS", "log_path=" + SanitizerLog()},
                               {"UBSAN_OPTIONS", "print_stacktrace=1:log_path=" + SanitizerLog()}};
        term_ = std::make_unique<TermSession>(options);
        ASSERT_TRUE(term_->WaitForText(KovoE2e::kWelcomeKeys, 60s)) << term_->Dump();
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
        Lab("nmcli -g UUID connection show | xargs -r nmcli connection delete");
    }
    ConsoleDriver Driver() { return ConsoleDriver(*term_); }
    static std::string SanitizerLog() { return std::string(KOVO_LAB_DIR) + "/sanitizer"; }

    // Logged in, with the network window open.
    bool OpenNetworkWindow() {
        TermSession& term = *term_;
        if (!Driver().LogIn(kPassword) || !Driver().Select("Configure Management Network")) return false;
        term.Press(Key::Enter);
        return term.WaitForText(KovoE2e::kWindowMark, 30s) && term.WaitForQuiet(300ms, 30s);
    }
    // From the window's first entry: the entry `downs` below opened, showing `mark`.
    bool OpenEntry(int downs, const std::string& mark) {
        TermSession& term = *term_;
        for (int i = 0; i < downs; ++i) {
            term.Press(Key::Down);
            term.WaitForQuiet(100ms, 10s);
        }
        term.Press(Key::Enter);
        return term.WaitForText(mark, 30s) && term.WaitForQuiet(300ms, 30s);
    }
    // Types into the focused field and waits for it to show.
    bool TypeShown(const std::string& text) {
        term_->Type(text);
        return term_->WaitForText(text, 10s) && term_->WaitForQuiet(100ms, 10s);
    }
    // Enter on the dialog showing `mark`, then the window left with Y.
    bool AcceptAndApply(const std::string& mark) {
        TermSession& term = *term_;
        term.Press(Key::Enter);
        if (!term.WaitForTextGone(mark, 30s) || !term.WaitForQuiet(300ms, 30s)) return false;
        term.Press(Key::Escape);
        if (!term.WaitForText(KovoE2e::kConfirmTitle, 30s) || !term.WaitForQuiet(300ms, 30s)) return false;
        confirmation_ = term.Dump();
        takeOverShown_ = term.Screen().Contains(kTakeOver);
        term.Type("y");
        return true;
    }
    // IPv4 set to a static address in the window, and the window left with Y.
    bool ApplyStatic(const std::string& address) {
        TermSession& term = *term_;
        if (!OpenNetworkWindow() || !OpenEntry(KovoE2e::kIpv4Downs, KovoE2e::kStaticChoice)) return false;
        // From the dynamic choice: the static one, then its three fields.
        term.Press(Key::Down);
        term.WaitForQuiet(100ms, 10s);
        term.Type(" ");
        term.WaitForQuiet(100ms, 10s);
        term.Press(Key::Down);
        term.WaitForQuiet(100ms, 10s);
        for (const std::string& value :
             {address, std::string("255.255.255.0"), std::string("192.168.88.1")}) {
            if (!TypeShown(value)) return false;
            term.Press(Key::Down);
            term.WaitForQuiet(100ms, 10s);
        }
        return AcceptAndApply(KovoE2e::kStaticChoice);
    }

    std::unique_ptr<TermSession> term_;
    bool takeOverShown_ = false;
    std::string confirmation_;  // the screen that asked
};

TEST_F(LabConsole, AStaticAddressKeptIsWhatTheHostRunsOnTheConsolesOwnBridge) {
    ASSERT_TRUE(ApplyStatic("192.168.88.60")) << term_->Dump();
    EXPECT_TRUE(takeOverShown_) << confirmation_;
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

// A change the host cannot bring up (this kernel has no VLAN links) fails when it is put in place, and the
// previous network comes back at once.
TEST_F(LabConsole, AChangeThatCannotComeUpIsRolledBackAndSaysSo) {
    constexpr const char* kVlanMark = "VLAN ID (1-4094, or 4095 to access all VLANs):";
    ASSERT_TRUE(OpenNetworkWindow()) << term_->Dump();
    ASSERT_TRUE(OpenEntry(KovoE2e::kVlanDowns, kVlanMark)) << term_->Dump();
    ASSERT_TRUE(TypeShown("20")) << term_->Dump();
    ASSERT_TRUE(AcceptAndApply(kVlanMark)) << term_->Dump();
    ASSERT_TRUE(term_->WaitForText("Putting the network configuration in place failed", 90s))
        << term_->Dump();
    ASSERT_TRUE(Driver().Acknowledge(KovoE2e::kErrorTitle)) << term_->Dump();
    ASSERT_TRUE(term_->WaitForText(kRestoredTitle, 60s)) << term_->Dump();
    EXPECT_TRUE(KovoE2e::WaitFor([] { return HasLease("e0"); }, 30s)) << KernelIpv4("e0");
    EXPECT_EQ(Lab("nmcli -g NAME connection show"), "Wired e0");
    EXPECT_EQ(KernelIpv4("xswitch0"), "");
}

}  // namespace
