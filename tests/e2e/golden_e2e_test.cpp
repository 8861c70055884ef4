// Golden screens: each window and dialog once, whole, as the console draws it on the simulated host, with
// every cell's style. A changed screen fails with the lines that differ; `KOVO_GOLDEN_UPDATE=1` rewrites
// the files in tests/e2e/golden for review (see docs/TESTING.md).
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>

#include "GoldenScreen.h"
#include "NetworkSteps.h"

namespace {

using namespace KovoE2e;

struct GoldenCase {
    const char* name;
    int columns = 80, rows = 25;
    // From the settled welcome screen to the screen to compare.
    std::function<bool(HostConsole&)> reach;
    const char* scenario = "default";
    // The machine's own keyboard (a local xterm) rather than a remote session: the keyboard entries show.
    const char* term = nullptr;
};

// A failure names the screen rather than the case's bytes.
void PrintTo(const GoldenCase& screen, std::ostream* out) {
    *out << screen.name;
}

bool Menu(HostConsole& host) {
    return LogIn(host, "", kRootPassword);
}

bool FromMenu(HostConsole& host, int downs, const char* title) {
    return Menu(host) && OpenFromMenu(host, downs, title);
}

bool InNetworkWindow(HostConsole& host, int downs, const char* mark) {
    return OpenNetwork(host) && OpenFromMenu(host, downs, mark);
}

bool InTroubleshooting(HostConsole& host, int downs, const char* mark) {
    return FromMenu(host, kTroubleshootingDowns, kTroubleshootingTitle) && OpenFromMenu(host, downs, mark);
}

bool InRestoreWindow(HostConsole& host, int downs, const char* mark) {
    return FromMenu(host, kRestoreDowns, "Restore Network Settings") && OpenFromMenu(host, downs, mark);
}

// The same ways as steps of a case.
using Reach = std::function<bool(HostConsole&)>;
template <bool (*Way)(HostConsole&, int, const char*)>
Reach Step(int downs, const char* mark) {
    return [=](HostConsole& host) { return Way(host, downs, mark); };
}
constexpr auto FromMenuTo = Step<FromMenu>;
constexpr auto InNetworkWindowTo = Step<InNetworkWindow>;
constexpr auto InTroubleshootingTo = Step<InTroubleshooting>;
constexpr auto InRestoreWindowTo = Step<InRestoreWindow>;

bool Welcome(HostConsole&) {
    return true;
}

// `key` on the welcome screen, and `text`.
Reach Pressed(Key key, const char* text) {
    return [=](HostConsole& host) {
        host.Term().Press(key);
        return host.Term().WaitForText(text);
    };
}

// `before`, then, once the screen has settled, `key` and `text`.
Reach Then(const Reach& before, Key key, const char* text, KovoTerm::TermSession::Millis deadline = 20s) {
    return [=](HostConsole& host) {
        if (!before(host) || !host.Term().WaitForQuiet(300ms)) return false;
        host.Term().Press(key);
        return host.Term().WaitForText(text, deadline);
    };
}

const GoldenCase kCases[] = {
    {"welcome", 80, 25, Welcome},
    {"welcome-80x24", 80, 24, Welcome},
    {"welcome-132x43", 132, 43, Welcome},
    {"login", 80, 25, Pressed(Key::F2, kLoginTitle)},
    {"menu", 80, 25, Menu},
    {"menu-80x24", 80, 24, Menu},
    {"menu-132x43", 132, 43, Menu},
    {"network-window", 80, 25, OpenNetwork},
    {"adapters-dialog", 80, 25, InNetworkWindowTo(0, "Select the adapters for this host's")},
    {"vlan-dialog", 80, 25, InNetworkWindowTo(kVlanDowns, "VLAN ID (1-4094")},
    {"ipv4-dialog", 80, 25, InNetworkWindowTo(kIpv4Downs, kStaticChoice)},
    {"ipv6-dialog", 80, 25, InNetworkWindowTo(kIpv6Downs, "Static address #1")},
    {"dns-dialog", 80, 25, InNetworkWindowTo(kDnsDowns, "Use the following DNS server")},
    {"suffixes-dialog", 80, 25, InNetworkWindowTo(kSuffixDowns, "Use spaces or commas")},
    {"restart-network-dialog", 80, 25, FromMenuTo(kRestartDowns, "Restart management network now?")},
    {"test-network-dialog", 80, 25, FromMenuTo(kTestDowns, kTestMark)},
    {"restore-window", 80, 25, FromMenuTo(kRestoreDowns, "Restore Network Settings")},
    {"troubleshooting-window", 80, 25, FromMenuTo(kTroubleshootingDowns, kTroubleshootingTitle)},
    {"shell-timeout-dialog", 80, 25, InTroubleshootingTo(2, "Availability timeout")},
    {"kovo-timeout-dialog", 80, 25, InTroubleshootingTo(3, "KOVO idle timeout")},
    {"restart-agents-dialog", 80, 25, InTroubleshootingTo(4, "Restart management agents now?")},
    {"restore-network-dialog", 80, 25, InRestoreWindowTo(0, "Restore Network Factory Settings")},
    {"password-dialog", 80, 25, FromMenuTo(0, "New Password:")},
    {"lockdown-dialog", 80, 25, FromMenuTo(kLockdownDowns, "Enable lockdown mode")},
    {"system-logs", 80, 25, FromMenuTo(kSystemLogsDowns, "<1> Syslog")},
    {"reset-dialog", 80, 25, FromMenuTo(kResetDowns, "Reset System Configuration now?")},
    {"shutdown-dialog", 80, 25, OpenShutdown},
    {"network-confirm", 80, 25,
     [](HostConsole& host) {
         if (!InNetworkWindow(host, kVlanDowns, "VLAN ID (1-4094")) return false;
         host.Term().Type("20");
         if (!host.Term().WaitForText("[ 20")) return false;
         host.Term().Press(Key::Enter);
         if (!Closed(host, "VLAN ID (1-4094")) return false;
         host.Term().Press(Key::Escape);
         return host.Term().WaitForText(kConfirmTitle);
     }},
    {"restore-window-dvs", 80, 25, FromMenuTo(kRestoreDowns, "Restore xDS"), "dvs"},
    {"safe-mode-dialog", 80, 25, InRestoreWindowTo(1, "Move the management network onto a standard switch?"),
     "dvs"},
    {"restore-dvs-dialog", 80, 25, InRestoreWindowTo(2, "Enter the properties for new xDS host local port"),
     "dvs-host-local-ports"},
    {"adapter-details", 80, 25,
     [](HostConsole& host) {
         if (!InNetworkWindow(host, 0, "Select the adapters for this host's")) return false;
         host.Term().Type("d");
         return host.Term().WaitForText("Adapter Details");
     }},
    {"running-vms-warning", 80, 25,
     Then(InRestoreWindowTo(0, "Restore Network Factory Settings"), Key::F11, "Host has VMs running.")},
    {"restart-network-done", 80, 25,
     [](HostConsole& host) {
         if (!FromMenu(host, kRestartDowns, "Restart management network now?")) return false;
         host.Term().Press(Key::F11);
         return host.Term().WaitForText("<Enter> OK") &&
                host.Term().WaitForText("Starting management network.");
     }},
    {"dvs-uplinks-chooser", 80, 25,
     [](HostConsole& host) {
         return InRestoreWindow(host, 2, "Enter the properties for new xDS host local port") &&
                OpenFromMenu(host, 2, "Select the xDS Uplinks (one or more)");
     },
     "dvs-host-local-ports"},
    {"support-information", 80, 25,
     [](HostConsole& host) {
         if (!Menu(host)) return false;
         Press(host, Key::Down, kSystemLogsDowns + 1);
         return host.Term().WaitForText("Page 1 of 3");
     }},
    {"invalid-address-message", 80, 25,
     [](HostConsole& host) {
         if (!FromMenu(host, kTestDowns, kTestMark)) return false;
         Press(host, Key::Down);
         host.Term().Type("1.2.3");
         if (!host.Term().WaitForText("[ 1.2.3")) return false;
         host.Term().Press(Key::Enter);
         return host.Term().WaitForText("Invalid IP or IPv6 address.");
     }},
    {"login-disabled", 80, 25, Pressed(Key::F2, "Direct console access has been disabled"), "login-disabled"},
    {"keyboard-dialog", 80, 25, FromMenuTo(kKeyboardDowns, kKeyboardDialogText), "default", "xterm"},
    {"login-at-the-keyboard", 80, 25, Pressed(Key::F2, "Configured Keyboard"), "default", "xterm"},
    // The keyboard line has the focus first.
    {"keyboard-from-login", 80, 25,
     Then(Pressed(Key::F2, "Configured Keyboard"), Key::Enter, kKeyboardDialogText), "default", "xterm"},
    {"same-password-warning", 80, 25,
     [](HostConsole& host) {
         if (!FromMenu(host, 0, "New Password:")) return false;
         for (int field = 0; field < 3; ++field) {
             host.Term().Type(kRootPassword);
             host.Term().Press(Key::Enter);
         }
         return host.Term().WaitForText("New password is same as old password. Are you sure?") &&
                host.Term().WaitForText("<Enter> Confirm");
     }},
    {"used-adapters-warning", 80, 25,
     [](HostConsole& host) {
         if (!InNetworkWindow(host, 0, "Select the adapters for this host's")) return false;
         Press(host, Key::Down, 2);
         host.Term().Type(" ");
         if (!host.Term().WaitForQuiet(200ms)) return false;
         host.Term().Press(Key::Enter);
         return host.Term().WaitForText("Remove these adapters from their current connections?");
     },
     "crowded-switches"},
    {"reboot-question", 80, 25,
     [](HostConsole& host) {
         if (!InNetworkWindow(host, kIpv6Downs, "Set static IPv6 address")) return false;
         Press(host, Key::Up);
         host.Term().Type(" ");
         if (!host.Term().WaitForQuiet(200ms)) return false;
         host.Term().Press(Key::Enter);
         if (!Closed(host, "Set static IPv6 address")) return false;
         host.Term().Press(Key::Escape);
         return host.Term().WaitForText(kRebootQuestion);
     }},
    {"dvs-uplinks-warning", 80, 25,
     [](HostConsole& host) {
         // The uplink chosen for the operator taken out again, then Enter on the blocked setting's box.
         if (!InRestoreWindow(host, 2, "Enter the properties for new xDS host local port") ||
             !OpenFromMenu(host, 2, "Select the xDS Uplinks (one or more)"))
             return false;
         host.Term().Type(" ");
         if (!host.Term().WaitForText("[ ] zennic0")) return false;
         host.Term().Press(Key::Enter);
         // The dialog below discards keys typed while it takes the keyboard back: let it settle first.
         if (!Closed(host, "Select the xDS Uplinks (one or more)")) return false;
         Press(host, Key::Up);
         host.Term().Press(Key::Enter);
         return host.Term().WaitForText("No uplinks were selected.");
     },
     "dvs-host-local-ports"},
    {"test-network-results", 80, 25,
     [](HostConsole& host) {
         if (!FromMenu(host, kTestDowns, kTestMark)) return false;
         host.Term().Press(Key::Enter);
         return host.Term().WaitForText("Testing Management Network") &&
                host.Term().WaitForText("Resolving hostname") && host.Term().WaitForText("<Enter> OK", 30s);
     }},
    {"restore-network-done", 80, 25,
     Then(Then(InRestoreWindowTo(0, "Restore Network Factory Settings"), Key::F11, "Host has VMs running."),
          Key::Enter, "Auto-configuring network. Done.", 30s)},
};

class GoldenScreens : public ::testing::TestWithParam<GoldenCase> {};

TEST_P(GoldenScreens, AreDrawnAsReviewed) {
    const GoldenCase& screen = GetParam();
    ConsoleStart start;
    start.columns = screen.columns;
    start.rows = screen.rows;
    if (screen.term) start.term = screen.term;
    auto host = MakeHost(screen.scenario, {}, start);
    ASSERT_TRUE(host->Term().WaitForText(kWelcomeKeys) && host->Term().WaitForQuiet(500ms))
        << host->Term().Dump();
    ASSERT_TRUE(screen.reach(*host)) << host->Term().Dump();
    ASSERT_TRUE(host->Term().WaitForQuiet(500ms));
    const std::string differences = CompareWithGolden(host->Term().Screen(), screen.name);
    EXPECT_EQ(differences, "");
}

INSTANTIATE_TEST_SUITE_P(Default, GoldenScreens, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<GoldenCase>& info) {
                             std::string name = info.param.name;
                             std::erase(name, '-');
                             return name;
                         });

}  // namespace
