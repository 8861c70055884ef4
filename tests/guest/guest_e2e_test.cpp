// The console installed from its package on a real Debian 12 host (a qemu guest), driven through the
// guest's serial console as an operator would, and checked on the guest itself through its agent. The
// guest boots once for the whole suite and the tests run in order, each starting where the last left
// the console: at the welcome screen.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "ConsoleDriver.h"
#include "HostSteps.h"
#include "ShellSteps.h"
#include "TermSession.h"
#include "WindowSteps.h"

using namespace std::chrono_literals;
using KovoTerm::Key;
using KovoTerm::TermSession;
using KovoTerm::VirtualTerminal;

namespace {

using KovoE2e::kLoginTitle;
using KovoE2e::kMenuTitle;
using KovoE2e::kWelcomeKeys;
using KovoE2e::Quote;
constexpr const char* kInvalid = "Invalid login or password.";
constexpr const char* kPasswordDialog = "Setting the password will prevent unauthorized access";
constexpr const char* kFirstPassword = "Kovo-Demo1";
constexpr const char* kSecondPassword = "Brand-New5";
// Emulated processors boot slowly, and more slowly still on a busy machine.
constexpr auto kBoot = 400s;

struct Result {
    int status = -1;
    std::string out;
};

class Guest {
  public:
    Guest() : _dir(std::string(KOVO_GUEST_RUN_DIR)) {
        std::filesystem::remove_all(_dir);
        std::filesystem::create_directories(std::filesystem::path(_dir).parent_path());
        KovoTerm::SpawnOptions options;
        options.argv = {KOVO_VM, "run", "--dir", _dir, "--image", KOVO_GUEST_IMAGE};
        options.columns = 80;
        options.rows = 24;  // a serial line's size: nobody tells the guest another
        options.inheritEnvironment = true;
        term = std::make_unique<TermSession>(options);
    }
    ~Guest() {
        const std::string stop = std::string(KOVO_VM) + " stop " + Quote(_dir) + " >/dev/null 2>&1";
        if (std::system(stop.c_str()) != 0) std::fprintf(stderr, "guest: stop failed\n");
    }

    // A command as root in the guest, through its agent; its output and status.
    Result Exec(const std::vector<std::string>& command) const {
        std::vector<std::string> words{"--"};
        words.insert(words.end(), command.begin(), command.end());
        return Vm("exec", words);
    }
    std::string Shell(const std::string& script) const { return Exec({"sh", "-c", script}).out; }
    // Keys pressed on the guest's own keyboard, which reach its foreground virtual console.
    bool Keys(const std::vector<std::string>& keys) const { return Vm("keys", keys).status == 0; }
    // The text of virtual console `vt`, a line per row.
    std::string Screen(int vt) const { return Vm("screen", {std::to_string(vt)}).out; }

    std::unique_ptr<TermSession> term;

    // One of kovo-vm's verbs on this guest.
    Result Vm(const std::string& verb, const std::vector<std::string>& words) const {
        std::string line = std::string(KOVO_VM) + " " + verb + " " + Quote(_dir);
        for (const std::string& word : words) line += " " + Quote(word);
        Result result;
        FILE* pipe = popen((line + " 2>&1").c_str(), "r");
        if (!pipe) return result;
        char buffer[4096];
        for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) result.out.append(buffer, n);
        const int status = pclose(pipe);
        result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return result;
    }

  private:
    std::string _dir;
};

std::string Trim(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
    return text;
}

class DebianGuest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        guest = new Guest();
        booted = guest->term->WaitForText(kWelcomeKeys, kBoot) && guest->term->WaitForQuiet(1s, 60s);
    }
    static void TearDownTestSuite() {
        delete guest;
        guest = nullptr;
    }
    void SetUp() override { ASSERT_TRUE(booted) << guest->term->Dump(); }

    TermSession& Term() { return *guest->term; }
    KovoE2e::ConsoleDriver Driver() { return KovoE2e::ConsoleDriver(Term()); }
    static bool MenuShown(const VirtualTerminal& s) { return KovoE2e::ConsoleDriver::MenuShown(s); }
    // The console that the host started after `since` bytes of the serial line: running, and drawn.
    bool ConsoleBack(size_t since) {
        auto& term = Term();
        const bool active = term.WaitUntil(
            [&] { return Trim(guest->Shell("systemctl is-active kovo@ttyS0.service")) == "active"; }, kBoot,
            2000ms);
        // Its own drawing, not what the last one left on the screen.
        return active &&
               term.WaitUntil(
                   [&] { return term.Output().find("<F2> Customize System", since) != std::string::npos; },
                   120s) &&
               term.WaitForText(kWelcomeKeys, 120s) && term.WaitForQuiet(1s, 60s);
    }
    static Guest* guest;
    static bool booted;
    static std::string password;
};

Guest* DebianGuest::guest = nullptr;
bool DebianGuest::booted = false;
std::string DebianGuest::password = kFirstPassword;

TEST_F(DebianGuest, TheIdleScreenShowsTheGuestsOwnIdentityAndLease) {
    auto& term = Term();
    EXPECT_TRUE(term.WaitForText("Debian GNU/Linux " + Trim(guest->Shell("cat /etc/debian_version")), 30s))
        << term.Dump();
    EXPECT_TRUE(term.Screen().Contains("QEMU Standard PC (i440FX + PIIX, 1996)")) << term.Dump();
    const std::string model =
        Trim(guest->Shell("sed -n 's/^model name[[:space:]]*: //p' /proc/cpuinfo | head -1"));
    ASSERT_FALSE(model.empty());
    EXPECT_TRUE(term.Screen().Contains(model)) << model << "\n" << term.Dump();
    EXPECT_TRUE(term.Screen().Contains("MiB Memory") || term.Screen().Contains("GiB Memory")) << term.Dump();
}

TEST_F(DebianGuest, TheIdleScreenShowsTheLeaseOnceItCame) {
    auto& term = Term();
    // The lease the lab gave the interface the default route leaves by, marked as one. The idle screen
    // reads the host when it is drawn, and a key that is not its own draws it again: a console that
    // drew before the lease came shows it at the operator's first key.
    // Both NICs take a lease; until the second has come, the default route may still change hands.
    std::smatch address;
    std::string routes;
    ASSERT_TRUE(term.WaitUntil(
        [&] {
            routes = guest->Shell("ip -4 -o route show default");
            return std::count(routes.begin(), routes.end(), '\n') == 2;
        },
        120s, 2000ms))
        << "not both leases: " << routes;
    // The one with the lowest metric.
    std::string device;
    long best = -1;
    const std::regex line("dev ([a-z0-9]+).*metric ([0-9]+)");
    for (auto it = std::sregex_iterator(routes.begin(), routes.end(), line); it != std::sregex_iterator();
         ++it)
        if (best < 0 || std::stol((*it)[2]) < best) {
            best = std::stol((*it)[2]);
            device = (*it)[1];
        }
    ASSERT_FALSE(device.empty()) << routes;
    const std::string addresses = guest->Shell("ip -4 -o addr show scope global dev " + device);
    ASSERT_TRUE(std::regex_search(addresses, address, std::regex("inet (192\\.168\\.77\\.[0-9]+)/")))
        << addresses;
    ASSERT_TRUE(Driver().AtWelcome()) << term.Dump();
    term.Press(Key::Enter);
    EXPECT_TRUE(term.WaitForText("https://" + address[1].str() + "/ (DHCP)", 60s)) << term.Dump();
}

TEST_F(DebianGuest, WrongPasswordsAreRefusedThenTheRightOneLogsIn) {
    auto& term = Term();
    ASSERT_TRUE(Driver().OpenLogin()) << term.Dump();
    term.Press(Key::Enter);
    for (const char* wrong : {"Wrong-One1", "Wrong-Two2", "Wrong-Six3"}) {
        term.Type(wrong);
        term.Press(Key::Enter);
        ASSERT_TRUE(Driver().Acknowledge(kInvalid)) << term.Dump();
        ASSERT_TRUE(term.WaitForText(kLoginTitle, 30s)) << term.Dump();
    }
    // The host's own PAM stack counted them against the console's terminal.
    EXPECT_NE(guest->Shell("faillock --user root").find("ttyS0"), std::string::npos);
    term.Type(password);
    term.Press(Key::Enter);
    ASSERT_TRUE(term.WaitFor(MenuShown, 60s)) << term.Dump();
    const std::string journal = guest->Shell("journalctl -b -t KOVO --no-pager -o cat");
    size_t failures = 0;
    for (size_t at = 0; (at = journal.find("Authentication of user root failed", at)) != std::string::npos;
         ++at)
        ++failures;
    EXPECT_EQ(failures, 3u) << journal;
    EXPECT_NE(journal.find("Authentication of user root succeeded"), std::string::npos) << journal;
    // A success clears the count, so the next mistakes start again from none.
    EXPECT_EQ(guest->Shell("faillock --user root").find("ttyS0"), std::string::npos);
}

TEST_F(DebianGuest, APasswordChangedFromTheMenuIsTheOneTheNextLoginNeeds) {
    auto& term = Term();
    if (!MenuShown(term.Screen())) {
        ASSERT_TRUE(Driver().LogIn(password)) << term.Dump();
    }
    const std::string before = guest->Shell("grep '^root:' /etc/shadow");
    term.Press(Key::Enter);  // Configure Password, the first entry
    ASSERT_TRUE(term.WaitForText(kPasswordDialog, 30s) && term.WaitForQuiet(500ms, 30s)) << term.Dump();
    for (const std::string& text : {password, std::string(kSecondPassword), std::string(kSecondPassword)}) {
        term.Type(text);
        term.Press(Key::Enter);
    }
    ASSERT_TRUE(term.WaitForTextGone(kPasswordDialog, 60s)) << term.Dump();
    ASSERT_TRUE(term.WaitFor(MenuShown, 30s)) << term.Dump();
    EXPECT_NE(guest->Shell("grep '^root:' /etc/shadow"), before);

    ASSERT_TRUE(Driver().OpenLogin()) << term.Dump();
    Driver().Submit(password);
    ASSERT_TRUE(Driver().Acknowledge(kInvalid)) << term.Dump();
    term.Type(kSecondPassword);
    term.Press(Key::Enter);
    ASSERT_TRUE(term.WaitFor(MenuShown, 60s)) << term.Dump();
    password = kSecondPassword;
}

TEST_F(DebianGuest, SshTurnedOffAndOnIsWhatSystemdRuns) {
    auto& term = Term();
    if (!MenuShown(term.Screen())) {
        ASSERT_TRUE(Driver().LogIn(password)) << term.Dump();
    }
    ASSERT_EQ(Trim(guest->Shell("systemctl is-active ssh.service")), "active");
    ASSERT_TRUE(Driver().Select("Troubleshooting Options")) << term.Dump();
    term.Press(Key::Enter);
    ASSERT_TRUE(term.WaitForText("Troubleshooting Mode Options", 30s) && term.WaitForQuiet(500ms, 30s))
        << term.Dump();
    term.Press(Key::Down);
    ASSERT_TRUE(term.WaitForText("Disable SSH", 30s)) << term.Dump();
    term.Press(Key::Enter);
    ASSERT_TRUE(term.WaitForText("Enable SSH", 120s)) << term.Dump();
    EXPECT_EQ(Trim(guest->Shell("systemctl is-active ssh.service")), "inactive");
    EXPECT_EQ(Trim(guest->Shell("systemctl is-enabled ssh.service")), "disabled");
    ASSERT_TRUE(term.WaitForQuiet(500ms, 30s));
    term.Press(Key::Enter);
    ASSERT_TRUE(term.WaitForText("Disable SSH", 120s)) << term.Dump();
    EXPECT_EQ(Trim(guest->Shell("systemctl is-active ssh.service")), "active");
    EXPECT_EQ(Trim(guest->Shell("systemctl is-enabled ssh.service")), "enabled");
    term.Press(Key::Escape);
    EXPECT_TRUE(term.WaitFor(MenuShown, 30s)) << term.Dump();
}

TEST_F(DebianGuest, TheLocalShellAndItsIdleTimeOutAreTheHostsOwn) {
    auto& term = Term();
    if (!MenuShown(term.Screen())) {
        ASSERT_TRUE(Driver().LogIn(password)) << term.Dump();
    }
    ASSERT_NE(Trim(guest->Shell("systemctl is-active getty@tty2.service")), "active");
    ASSERT_TRUE(Driver().Select("Troubleshooting Options")) << term.Dump();
    term.Press(Key::Enter);
    ASSERT_TRUE(term.WaitForText("Enable Qori Shell", 30s) && term.WaitForQuiet(500ms, 30s)) << term.Dump();
    // Enter on the selected service's entry, then the entry that says the other way round.
    const auto toggle = [&](const std::string& entry, const std::string& after) {
        if (!Driver().Select(entry)) return false;
        term.Press(Key::Enter);
        return term.WaitForText(after, 120s) && term.WaitForQuiet(500ms, 30s);
    };
    // The local shell is the login prompt on the second console.
    ASSERT_TRUE(toggle("Qori Shell", "Disable Qori Shell")) << term.Dump();
    EXPECT_EQ(Trim(guest->Shell("systemctl is-active getty@tty2.service")), "active");
    EXPECT_EQ(Trim(guest->Shell("systemctl is-enabled getty@tty2.service")), "enabled");
    ASSERT_TRUE(toggle("Qori Shell", "Enable Qori Shell")) << term.Dump();
    EXPECT_EQ(Trim(guest->Shell("systemctl is-active getty@tty2.service")), "inactive");
    EXPECT_EQ(Trim(guest->Shell("systemctl is-enabled getty@tty2.service")), "disabled");

    // The time-outs are set while both services are off. The idle time-out, the second field, is every
    // login shell's.
    ASSERT_TRUE(toggle("SSH Support", "Enable SSH")) << term.Dump();
    ASSERT_TRUE(Driver().Select("Modify Qori Shell and SSH timeouts")) << term.Dump();
    term.Press(Key::Enter);
    ASSERT_TRUE(term.WaitForText("Availability timeout", 30s) && term.WaitForQuiet(500ms, 30s))
        << term.Dump();
    term.Press(Key::Down);
    for (int i = 0; i < 5; ++i) term.Press(Key::Backspace);
    term.Type("5");
    term.Press(Key::Enter);
    ASSERT_TRUE(term.WaitForTextGone("Availability timeout", 60s)) << term.Dump();
    EXPECT_EQ(Trim(guest->Shell("bash -lc 'echo $TMOUT'")), "300");

    ASSERT_TRUE(toggle("SSH Support", "Disable SSH")) << term.Dump();
    EXPECT_EQ(Trim(guest->Shell("systemctl is-active ssh.service")), "active");
    term.Press(Key::Escape);
    EXPECT_TRUE(term.WaitFor(MenuShown, 30s)) << term.Dump();
}

// A machine of the guest's hypervisor service: a container sharing the guest's files, whose init says in
// /var/lib/kovo-test/NAME that it runs, and that it stopped when asked to (SIGTERM, or a request on its
// init's control pipe, as the service asks a SysV init). Its /run is its own, so the pipe is too. With
// "ignores" after its name it takes no request at all: an init without a handler never sees SIGTERM.
constexpr const char* kMachineInit = R"(#!/bin/sh
echo running >"/var/lib/kovo-test/$1"
if [ "$2" = ignores ]; then
  while :; do sleep 1; done
fi
stop() { echo stopped >"/var/lib/kovo-test/$1"; exit 0; }
trap 'stop "$1"' TERM
rm -f /run/initctl && mkfifo /run/initctl
while :; do
  head -c 1 /run/initctl >/dev/null &
  wait $! && stop "$1"
done
)";
constexpr const char* kMachineDomain = R"(<domain type='lxc'>
  <name>NAME</name>
  <memory unit='MiB'>32</memory>
  <os><type>exe</type><init>/usr/local/sbin/kovo-test-machine</init><initarg>NAME</initarg><initarg>MODE</initarg></os>
  <devices>
    <filesystem type='ram' accessmode='passthrough'><source usage='8' units='MiB'/><target dir='/run'/></filesystem>
    <console type='pty'/>
  </devices>
</domain>
)";
constexpr const char* kContainers = "lxc:///system";

// Starts machine `name`; true once its init has said it runs.
bool StartMachine(Guest& guest, const std::string& name, bool answers = true) {
    const std::string domain =
        std::regex_replace(std::regex_replace(kMachineDomain, std::regex("NAME"), name), std::regex("MODE"),
                           answers ? "answers" : "ignores");
    const Result started =
        guest.Exec({"sh", "-c",
                    "mkdir -p /var/lib/kovo-test && rm -f /var/lib/kovo-test/\"$3\" && printf '%s' \"$1\" "
                    ">/usr/local/sbin/kovo-test-machine && chmod +x /usr/local/sbin/kovo-test-machine && "
                    "printf '%s' \"$2\" >/tmp/machine.xml && virsh -q -c \"$4\" create /tmp/machine.xml",
                    "_", kMachineInit, domain, name, kContainers});
    if (started.status != 0) {
        std::fprintf(stderr, "machine %s: %s\n", name.c_str(), started.out.c_str());
        return false;
    }
    for (int tries = 0; tries < 30; ++tries) {
        if (Trim(guest.Shell("cat /var/lib/kovo-test/" + name + " 2>/dev/null")) == "running") return true;
        std::this_thread::sleep_for(1s);
    }
    return false;
}

// Both agents restarted for real, each stop and start waited for; the machines they serve run on.
TEST_F(DebianGuest, RestartingAgentsRestartsTheHypervisorServiceAndItsMachinesRunOn) {
    auto& term = Term();
    ASSERT_TRUE(StartMachine(*guest, "web1"));
    const std::string invocation = "systemctl show -p InvocationID --value ";
    const std::string daemonBefore = Trim(guest->Shell(invocation + "libvirtd.service"));
    const std::string logBefore = Trim(guest->Shell(invocation + "virtlogd.service"));
    if (!MenuShown(term.Screen())) {
        ASSERT_TRUE(Driver().LogIn(password)) << term.Dump();
    }
    ASSERT_TRUE(Driver().Select("Troubleshooting Options")) << term.Dump();
    term.Press(Key::Enter);
    ASSERT_TRUE(term.WaitForText("Troubleshooting Mode Options", 30s) && term.WaitForQuiet(500ms, 30s))
        << term.Dump();
    ASSERT_TRUE(Driver().Select("Restart Management Agents")) << term.Dump();
    term.Press(Key::Enter);
    ASSERT_TRUE(term.WaitForText("Restart management agents now?", 30s) && term.WaitForQuiet(500ms, 30s))
        << term.Dump();
    term.Press(Key::F11);
    ASSERT_TRUE(term.WaitForText("Starting management agents. Done.", 120s)) << term.Dump();
    EXPECT_TRUE(term.Screen().Contains("Stopping management agents. Done.")) << term.Dump();
    EXPECT_EQ(Trim(guest->Shell("systemctl is-active libvirtd.service virtlogd.service")), "active\nactive");
    EXPECT_NE(Trim(guest->Shell(invocation + "libvirtd.service")), daemonBefore);
    EXPECT_NE(Trim(guest->Shell(invocation + "virtlogd.service")), logBefore);
    EXPECT_EQ(Trim(guest->Shell(std::string("virsh -c ") + kContainers + " domstate web1")), "running");
    EXPECT_EQ(Trim(guest->Shell("cat /var/lib/kovo-test/web1")), "running");
    term.Press(Key::Enter);
    // The window discards keys typed while it comes back: let it settle first.
    ASSERT_TRUE(term.WaitForTextGone("Restart management agents now?", 30s) && term.WaitForQuiet(500ms, 30s))
        << term.Dump();
    term.Press(Key::Escape);
    EXPECT_TRUE(term.WaitFor(MenuShown, 30s)) << term.Dump();
}

// A machine that takes no shut-down request: asked, it runs on; forced (what the power dialog's box asks
// for), the host tool switches it off at once.
TEST_F(DebianGuest, AForcedShutDownSwitchesOffAMachineThatIgnoresTheRequest) {
    ASSERT_TRUE(StartMachine(*guest, "db1", false));
    const std::string tool =
        std::string("LIBVIRT_DEFAULT_URI=") + kContainers + " /usr/libexec/kovo/kovo-host ";
    const std::string state = std::string("virsh -c ") + kContainers + " domstate db1 2>/dev/null";
    ASSERT_EQ(guest->Exec({"sh", "-c", tool + "vms running"}).status, 0);
    // Asked through the service, with no waiting: the request is made and the machine still runs.
    ASSERT_EQ(guest->Exec({"sh", "-c", std::string("virsh -c ") + kContainers + " shutdown db1"}).status, 0);
    std::this_thread::sleep_for(3s);
    EXPECT_EQ(Trim(guest->Shell(state)), "running");
    const Result forced = guest->Exec({"sh", "-c", tool + "vms shutdown --force"});
    EXPECT_EQ(forced.status, 0) << forced.out;
    EXPECT_EQ(Trim(guest->Shell(state)), "");
    // Nothing runs any more (the host tool says so with status 3).
    EXPECT_EQ(guest->Exec({"sh", "-c", tool + "vms running"}).status, 3);
}

TEST_F(DebianGuest, TheSystemLogIsTheJournalInThePager) {
    auto& term = Term();
    if (!MenuShown(term.Screen())) {
        ASSERT_TRUE(Driver().LogIn(password)) << term.Dump();
    }
    ASSERT_TRUE(Driver().Select("View System Logs")) << term.Dump();
    // The logs the journal keeps, numbered; 1 is the journal of this boot.
    ASSERT_TRUE(term.WaitForText("<1> Syslog", 30s) && term.WaitForQuiet(500ms, 30s)) << term.Dump();
    EXPECT_FALSE(term.Screen().Contains("(obsd)")) << term.Dump();
    term.Type("1");
    // The journal's own first line, and the console's own log lines in it.
    EXPECT_TRUE(term.WaitForText("kovo-guest kernel: Linux version", 60s)) << term.Dump();
    // Follow mode, left the only way it can be: Ctrl-C, which is the pager's and not the console's.
    const std::string pid = Trim(guest->Shell("systemctl show -p MainPID --value kovo@ttyS0.service"));
    ASSERT_TRUE(term.WaitForQuiet(500ms, 30s));
    term.Type("F");
    term.Pause(1s);
    term.SendRaw("\x03");
    ASSERT_TRUE(term.WaitForQuiet(500ms, 30s));
    term.Type("q");
    EXPECT_TRUE(term.WaitForTextGone("kernel: Linux version", 30s)) << term.Dump();
    EXPECT_TRUE(term.WaitFor(MenuShown, 30s) && term.WaitForQuiet(500ms, 30s)) << term.Dump();
    EXPECT_EQ(Trim(guest->Shell("systemctl show -p MainPID --value kovo@ttyS0.service")), pid);
    term.Press(Key::Escape);
    EXPECT_TRUE(term.WaitForText(kWelcomeKeys, 30s)) << term.Dump();
}

// The layout is offered only where the operator sits at the machine's keyboard: on a virtual console,
// driven here by keys on the guest's own keyboard and read back from the console's screen memory.
TEST_F(DebianGuest, AKeyboardLayoutChosenOnTheFirstConsoleIsWhatItsKeysType) {
    auto& term = Term();
    const auto shows = [&](const std::string& text) {
        return term.WaitUntil([&] { return guest->Screen(1).find(text) != std::string::npos; }, 120s, 1000ms);
    };
    ASSERT_EQ(guest->Exec({"systemctl", "start", "kovo@tty1.service"}).status, 0);
    ASSERT_TRUE(shows(kWelcomeKeys)) << guest->Screen(1);
    ASSERT_TRUE(guest->Keys({"f2"}));
    ASSERT_TRUE(shows("Configured Keyboard (US Default)")) << guest->Screen(1);
    // Enter on the keyboard line, which has the focus; the top of the list is the first layout.
    ASSERT_TRUE(guest->Keys({"ret"}));
    ASSERT_TRUE(shows("If you are having difficulty using your keyboard")) << guest->Screen(1);
    ASSERT_TRUE(guest->Keys(std::vector<std::string>(40, "up")));
    ASSERT_TRUE(guest->Keys({"spc", "ret"}));
    ASSERT_TRUE(shows("Configured Keyboard (Belgian)")) << guest->Screen(1);

    // The host's keyboard configuration, which its consoles are set up from at every boot.
    const std::string status = guest->Shell("localectl status");
    EXPECT_NE(status.find("X11 Layout: be"), std::string::npos) << status;
    EXPECT_EQ(Trim(guest->Shell("grep '^XKBLAYOUT=' /etc/default/keyboard")), "XKBLAYOUT=be");
    // The keymap is the consoles' now: on an AZERTY keyboard the keys a US one calls Q, A, Z type a, q, w.
    ASSERT_TRUE(guest->Keys({"down", "backspace", "backspace", "backspace", "backspace", "backspace"}));
    ASSERT_TRUE(guest->Keys({"q", "a", "z"}));
    EXPECT_TRUE(shows("aqw")) << guest->Screen(1);
    EXPECT_NE(
        guest->Shell("journalctl -b -t KOVO --no-pager -o cat").find("Keyboard Layout changed to Belgian"),
        std::string::npos);

    // A layout the consoles cannot take is not kept for the next boot either: the host keeps the one its
    // consoles have, and the operator reads why.
    ASSERT_EQ(guest->Exec({"chmod", "0", "/bin/setupcon"}).status, 0);
    ASSERT_TRUE(guest->Keys({"up", "ret"}));
    ASSERT_TRUE(shows("If you are having difficulty using your keyboard")) << guest->Screen(1);
    ASSERT_TRUE(guest->Keys({"down", "spc", "ret"}));
    EXPECT_TRUE(shows("The consoles did not take the layout Brazilian")) << guest->Screen(1);
    EXPECT_EQ(Trim(guest->Shell("grep '^XKBLAYOUT=' /etc/default/keyboard")), "XKBLAYOUT=be");
    EXPECT_EQ(guest->Exec({"chmod", "755", "/bin/setupcon"}).status, 0);
    ASSERT_TRUE(guest->Keys({"ret"}));
    EXPECT_TRUE(shows("Configured Keyboard (Belgian)")) << guest->Screen(1);
    // The tests that follow drive the serial line's console alone.
    EXPECT_EQ(guest->Exec({"systemctl", "stop", "kovo@tty1.service"}).status, 0);
}

TEST_F(DebianGuest, ThirtyCtrlCInThreeSecondsLeaveTheConsoleOnItsLine) {
    auto& term = Term();
    ASSERT_TRUE(Driver().AtWelcome()) << term.Dump();
    const std::string firstPid = Trim(guest->Shell("systemctl show -p MainPID --value kovo@ttyS0.service"));
    for (int i = 0; i < 30; ++i) {
        term.SendRaw("\x03");
        term.Pause(100ms);
    }
    term.Pause(5s);
    EXPECT_EQ(Trim(guest->Shell("systemctl is-active kovo@ttyS0.service")), "active");
    EXPECT_NE(Trim(guest->Shell("systemctl show -p MainPID --value kovo@ttyS0.service")), firstPid);
    EXPECT_NE(Trim(guest->Shell("systemctl show -p NRestarts --value kovo@ttyS0.service")), "0");
    // A console that draws again after the storm, and takes keys.
    term.Press(Key::Enter);
    EXPECT_TRUE(term.WaitForText(kWelcomeKeys, 60s)) << term.Dump();
    ASSERT_TRUE(Driver().OpenLogin()) << term.Dump();
    term.Press(Key::Escape);
    EXPECT_TRUE(term.WaitForTextGone(kLoginTitle, 30s)) << term.Dump();
}

// A whole session on the real host: a static address set in the network window from the login on, kept
// once its tests passed, and shown by the idle screen.
TEST_F(DebianGuest, AStaticAddressAppliedFromTheWindowIsWhatTheIdleScreenShows) {
    auto& term = Term();
    KovoE2e::WindowSteps steps(term);
    ASSERT_TRUE(steps.ApplyStatic(password, "192.168.77.50", "255.255.255.0", "192.168.77.1")) << term.Dump();
    ASSERT_TRUE(steps.KeepWhenAsked()) << term.Dump();
    EXPECT_NE(steps.kept.find("Pinging address (192.168.77.1). OK."), std::string::npos) << steps.kept;
    EXPECT_EQ(Trim(guest->Shell("nmcli -g ipv4.method,ipv4.addresses connection show 'Management Network'")),
              "manual\n192.168.77.50/24");
    EXPECT_EQ(Trim(guest->Shell("ip -4 -o addr show dev xswitch0 | awk '{print $4}'")), "192.168.77.50/24");
    ASSERT_TRUE(Driver().AtWelcome()) << term.Dump();
    EXPECT_TRUE(term.WaitForText("https://192.168.77.50/ (STATIC)", 60s)) << term.Dump();
}

// Two uplinks on a real kernel: the NIC the bridge already had stays first in the teaming order, and the
// one checked beside it comes second. An active-backup bond under the bridge whose first NIC carries the
// traffic, and whose second takes over when the first loses its link.
TEST_F(DebianGuest, TwoUplinksAreAnActiveBackupBondTheFirstActive) {
    constexpr const char* kAdaptersMark = "Select the adapters for this host's default management network";
    auto& term = Term();
    // The NIC the last change put under the bridge: the one whose lease was the management address.
    const std::string first = Trim(guest->Shell("ip -o link show master xswitch0 | awk -F': ' '{print $2}'"));
    ASSERT_TRUE(first == "ens3" || first == "ens4") << first;
    const std::string second = first == "ens3" ? "ens4" : "ens3";
    KovoE2e::WindowSteps steps(term);
    ASSERT_TRUE(steps.OpenNetworkWindow(password) && steps.OpenEntry(0, kAdaptersMark)) << term.Dump();
    // The rows are ens3 and ens4, the first selected. A slow guest may drop a key typed while it draws,
    // so each key is checked for its effect and pressed again if it had none.
    const auto row = [&](const std::string& nic) {
        int at = 0, column = 0;
        return term.Screen().Find(nic, at, column) ? std::make_pair(at, column) : std::make_pair(-1, -1);
    };
    const auto checked = [&] {
        const auto [at, column] = row(second);
        return at >= 0 && term.Screen().RowText(at).find("[X] " + second) != std::string::npos;
    };
    const auto selected = [&] {
        const auto [at, column] = row(second);
        return at >= 0 && term.Screen().CellAt(at, column).reverse;
    };
    const auto until = [&](const std::function<bool()>& done, const std::function<void()>& press) {
        for (int i = 0; i < 3 && !done(); ++i) {
            press();
            term.WaitUntil(done, 10s);
        }
        return done();
    };
    ASSERT_TRUE(until(selected, [&] { term.Press(second == "ens4" ? Key::Down : Key::Up); }) &&
                until(checked, [&] { term.Type(" "); }))
        << term.Dump();
    ASSERT_TRUE(steps.AcceptAndApply(kAdaptersMark)) << term.Dump();
    ASSERT_TRUE(steps.KeepWhenAsked()) << term.Dump();

    const auto bonding = [] { return guest->Shell("cat /proc/net/bonding/mgmtbond0"); };
    const auto active = [&](const std::string& nic) {
        return bonding().find("Currently Active Slave: " + nic) != std::string::npos;
    };
    EXPECT_NE(bonding().find("Bonding Mode: fault-tolerance (active-backup)"), std::string::npos)
        << bonding();
    EXPECT_NE(bonding().find("Primary Slave: " + first), std::string::npos) << bonding();
    EXPECT_TRUE(active(first)) << bonding();
    EXPECT_EQ(Trim(guest->Shell("ip -o link show dev mgmtbond0 | grep -o 'master [^ ]*'")),
              "master xswitch0");

    // The first NIC's cable pulled: the second carries the address, which still reaches the gateway.
    const std::string firstCable = first == "ens3" ? "nic0" : "nic1";
    ASSERT_EQ(guest->Vm("link", {firstCable, "down"}).status, 0);
    EXPECT_TRUE(term.WaitUntil([&] { return active(second); }, 60s, 1000ms)) << bonding();
    EXPECT_EQ(Trim(guest->Shell("ping -c 1 -W 5 -I xswitch0 192.168.77.1 >/dev/null && echo answers")),
              "answers");
    // Plugged again: the first is the primary, so it takes the traffic back.
    ASSERT_EQ(guest->Vm("link", {firstCable, "up"}).status, 0);
    EXPECT_TRUE(term.WaitUntil([&] { return active(first); }, 60s, 1000ms)) << bonding();
}

// A VLAN on a real kernel: the management address moves onto VLAN 20, which the lab's switch carries
// tagged on the guest's NICs and untagged on a segment of its own.
TEST_F(DebianGuest, AVlanCarriesTheManagementAddressTagged) {
    constexpr const char* kVlanMark = "VLAN ID (1-4094, or 4095 to access all VLANs):";
    auto& term = Term();
    KovoE2e::WindowSteps steps(term);
    ASSERT_TRUE(steps.OpenNetworkWindow(password) && steps.OpenEntry(KovoE2e::kVlanDowns, kVlanMark))
        << term.Dump();
    ASSERT_TRUE(steps.TypeShown("20") && steps.Accept(kVlanMark)) << term.Dump();
    // The address of VLAN 20's segment, from the entry below.
    ASSERT_TRUE(steps.OpenEntry(KovoE2e::kIpv4Downs - KovoE2e::kVlanDowns, KovoE2e::kStaticChoice))
        << term.Dump();
    ASSERT_TRUE(steps.Choose(0, Key::Down, {"192.168.20.50", "255.255.255.0", "192.168.20.1"}) &&
                steps.AcceptAndApply(KovoE2e::kStaticChoice))
        << term.Dump();
    ASSERT_TRUE(steps.KeepWhenAsked()) << term.Dump();
    // The gateway answered: the guest's frames reached VLAN 20's segment, which takes only tagged ones.
    EXPECT_NE(steps.kept.find("Pinging address (192.168.20.1). OK."), std::string::npos) << steps.kept;
    EXPECT_NE(guest->Shell("ip -d link show dev xswitch0.20").find("vlan protocol 802.1Q id 20"),
              std::string::npos)
        << guest->Shell("ip -d link show dev xswitch0.20");
    EXPECT_EQ(Trim(guest->Shell("ip -4 -o addr show dev xswitch0.20 | awk '{print $4}'")),
              "192.168.20.50/24");
    EXPECT_EQ(Trim(guest->Shell("ip -4 -o addr show dev xswitch0")), "");
    // From the segment's side, the address answers.
    EXPECT_EQ(guest->Vm("lab", {"--", "ping", "-c", "1", "-W", "5", "-I", "sw20", "192.168.20.50"}).status,
              0);
    // From the untagged LAN, a neighbour of the same subnet gets no answer: the replies go out tagged.
    const Result offIt = guest->Vm(
        "lab", {"--", "sh", "-c",
                "ip addr add 192.168.20.9/24 dev lab0 && ping -c 2 -W 2 -I lab0 192.168.20.50; status=$?; "
                "ip addr del 192.168.20.9/24 dev lab0; exit $status"});
    EXPECT_NE(offIt.status, 0) << offIt.out;
    EXPECT_NE(offIt.out.find("0 received"), std::string::npos) << offIt.out;
}

// A host whose network ifupdown runs, as Debian's installer leaves a server: ens3 on DHCP by its own
// client. The first change says it takes ens3 over, and once kept ens3 is NetworkManager's (restarted
// by systemd to see that), its stanza is gone, and ifupdown's client has ended.
TEST_F(DebianGuest, AHostIfupdownRunsIsTakenOverByTheFirstChangeKept) {
    auto& term = Term();
    const Result setUp = guest->Exec(
        {"sh", "-c",
         "nmcli -g UUID connection show | xargs -r nmcli connection delete >/dev/null && "
         "printf 'auto lo\\niface lo inet loopback\\n\\nallow-hotplug ens3\\niface ens3 inet dhcp\\n\\n"
         "iface ens4 inet manual\\n' >/etc/network/interfaces && systemctl restart NetworkManager && "
         "ifup ens3 && systemctl show -p InvocationID --value NetworkManager"});
    ASSERT_EQ(setUp.status, 0) << setUp.out;
    const std::string invocation = Trim(setUp.out.substr(setUp.out.rfind('\n', setUp.out.size() - 2) + 1));
    ASSERT_EQ(Trim(guest->Shell("nmcli -g GENERAL.STATE device show ens3")), "10 (unmanaged)");
    const std::string clients = "ps -eo args | grep -c '^dhclien[t] .*/run/dhclient.ens3.pid'";
    ASSERT_EQ(Trim(guest->Shell(clients)), "1");

    KovoE2e::WindowSteps steps(term);
    ASSERT_TRUE(steps.OpenNetworkWindow(password) &&
                steps.OpenEntry(KovoE2e::kIpv4Downs, KovoE2e::kStaticChoice))
        << term.Dump();
    // The window shows the lease as ifupdown's client runs it: DHCP.
    ASSERT_TRUE(term.Screen().Contains("(o) Use dynamic")) << term.Dump();
    ASSERT_TRUE(steps.Choose(1, Key::Down, {"192.168.77.52", "255.255.255.0", "192.168.77.1"}) &&
                steps.AcceptAndApply(KovoE2e::kStaticChoice))
        << term.Dump();
    EXPECT_NE(steps.confirmation.find("The management network runs on ens3, which ifupdown"),
              std::string::npos)
        << steps.confirmation;
    ASSERT_TRUE(steps.KeepWhenAsked()) << term.Dump();
    EXPECT_NE(steps.kept.find("Pinging address (192.168.77.1). OK."), std::string::npos) << steps.kept;

    EXPECT_EQ(Trim(guest->Shell("ip -4 -o addr show dev xswitch0 | awk '{print $4}'")), "192.168.77.52/24");
    EXPECT_EQ(Trim(guest->Shell("ip -o link show dev ens3 | grep -o 'master [^ ]*'")), "master xswitch0");
    EXPECT_EQ(Trim(guest->Shell("grep -c ens3 /etc/network/interfaces")), "0");
    EXPECT_EQ(Trim(guest->Shell("grep -c 'iface ens4 inet manual' /etc/network/interfaces")), "1");
    EXPECT_NE(Trim(guest->Shell("systemctl show -p InvocationID --value NetworkManager")), invocation);
    EXPECT_EQ(Trim(guest->Shell(clients)), "0");
    EXPECT_EQ(Trim(guest->Shell("ls /var/lib/kovo/ifupdown-handover 2>&1 >/dev/null | grep -c 'No such'")),
              "1");
}

// The running machines are asked to shut down, and have, before the host restarts. This guest's machines
// are containers: the console's unit is told so through libvirt's own variable.
TEST_F(DebianGuest, RestartShutsTheMachinesDownBootsTheHostAndTheConsoleComesBack) {
    auto& term = Term();
    const size_t restarted = term.Output().size();
    ASSERT_EQ(
        guest
            ->Exec({"sh", "-c",
                    "mkdir -p /etc/systemd/system/kovo@.service.d && printf "
                    "'[Service]\\nEnvironment=LIBVIRT_DEFAULT_URI=%s\\n' \"$1\" "
                    ">/etc/systemd/system/kovo@.service.d/containers.conf && systemctl daemon-reload && "
                    "systemctl restart kovo@ttyS0.service",
                    "_", kContainers})
            .status,
        0);
    ASSERT_TRUE(ConsoleBack(restarted)) << term.Dump();
    ASSERT_TRUE(StartMachine(*guest, "web2"));
    const std::string boot = Trim(guest->Shell("cat /proc/sys/kernel/random/boot_id"));
    ASSERT_TRUE(Driver().OpenLogin(Key::F12)) << term.Dump();
    Driver().Submit(password);
    ASSERT_TRUE(term.WaitForText("Forcefully terminate running VMs", 60s) && term.WaitForQuiet(500ms, 30s))
        << term.Dump();
    const size_t before = term.Output().size();
    term.Press(Key::F11);
    // Asked of the agent until the guest answers from a new boot.
    std::string now = boot;
    for (auto end = std::chrono::steady_clock::now() + kBoot;
         (now == boot || now.empty()) && std::chrono::steady_clock::now() < end;) {
        term.Pause(3s);
        const Result r = guest->Exec({"cat", "/proc/sys/kernel/random/boot_id"});
        now = r.status == 0 ? Trim(r.out) : "";
    }
    ASSERT_NE(now, boot) << term.Dump();
    EXPECT_EQ(Trim(guest->Shell("cat /var/lib/kovo-test/web2")), "stopped");
    EXPECT_TRUE(ConsoleBack(before)) << term.Dump();
}

TEST_F(DebianGuest, ShutDownTurnsTheGuestOff) {
    auto& term = Term();
    ASSERT_TRUE(Driver().OpenLogin(Key::F12)) << term.Dump();
    Driver().Submit(password);
    ASSERT_TRUE(term.WaitForText("Forcefully terminate running VMs", 60s) && term.WaitForQuiet(500ms, 30s))
        << term.Dump();
    term.Press(Key::F2);
    // The launcher ends when qemu does, which it does when the guest powers off.
    const auto exit = term.WaitExit(kBoot);
    ASSERT_TRUE(exit.has_value()) << term.Dump();
    EXPECT_TRUE(exit->IsExitCode(0)) << term.Dump();
}

}  // namespace
