// Test Management Network on the simulated host: what the dialog offers, what it pings and resolves,
// Esc during a test, and a hosts file that stays whole whatever happens to the console meanwhile.
#include <gtest/gtest.h>

#include <signal.h>

#include <functional>

#include "NetworkSteps.h"
#include "ProcessTree.h"

namespace {

using namespace KovoE2e;

constexpr const char* kRunTitle = "Testing Management Network";

// Enter, and the run to its end: an address that does not answer is waited for twelve seconds.
bool RunToEnd(HostConsole& host) {
    host.Term().Press(Key::Enter);
    // The dialog's key line once every test has run: Enter alone.
    const auto ended = [](const VirtualTerminal& screen) {
        return screen.Contains(kRunTitle) && screen.Contains("<Enter> OK") &&
               !screen.Contains("<Esc> Cancel");
    };
    return host.Term().WaitForText(kRunTitle) && host.Term().WaitFor(ended, 60s);
}

// Whether a ping of `address` is still running on the machine (the host's processes are visible here).
bool PingRunning(const std::string& address) {
    for (pid_t pid : KovoTerm::ProcessTree::All()) {
        const std::string line = KovoTerm::ProcessTree::CommandLine(pid);
        if (line.find("zenkping") != std::string::npos && line.find(address) != std::string::npos)
            return true;
    }
    return false;
}

TEST(NetworkCheck, DefaultHostPingsAndResolvesWhatItShows) {
    auto host = MakeHost("default");
    const std::string hosts = HostFile(*host, "/etc/hosts");
    ASSERT_NE(hosts.find(kFqdn), std::string::npos) << hosts;
    ASSERT_TRUE(OpenTest(*host)) << host->Term().Dump();
    const VirtualTerminal& screen = host->Term().Screen();
    // The fields start with the gateway, both name servers and the host's name (which values, in which
    // order, is the unit tests' business). The third emptied: only what is left is pinged. (The results
    // of the whole default run are a golden screen.)
    Fill(*host, {nullptr, nullptr, ""});
    ASSERT_TRUE(RunToEnd(*host)) << host->Term().Dump();
    EXPECT_EQ(CommandCount(*host, {"zenkping"}), 2u) << HostRecords(*host, "commands.log");
    EXPECT_EQ(CommandCount(*host, {R"("/bin/zenkping","-c","3","-I","zk0","10.20.30.1")"}), 1u)
        << HostRecords(*host, "commands.log");
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(Closed(*host, kRunTitle, 200ms)) << host->Term().Dump();
    EXPECT_EQ(HostFile(*host, "/etc/hosts"), hosts);

    // A name the host's name servers do not know, with the hosts file unchanged again.
    ASSERT_TRUE(OpenFromMenu(*host, 0, kTestMark)) << host->Term().Dump();
    Fill(*host, {"", "", "", "nosuch.lab.example"});
    ASSERT_TRUE(RunToEnd(*host)) << host->Term().Dump();
    EXPECT_TRUE(screen.Contains("Resolving hostname (nosuch.lab.example). Failed.")) << host->Term().Dump();
    EXPECT_FALSE(screen.Contains("Pinging address"));
    EXPECT_EQ(HostFile(*host, "/etc/hosts"), hosts);
    EXPECT_FALSE(HostHasHostsBackup(*host))
        << "a backup left behind would be put back over a later hosts file";
}

// A host without a gateway or name servers: the fields start empty (which is the unit tests' business).
TEST(NetworkCheck, AnInvalidAddressIsRefusedBeforeAnythingRuns) {
    auto host = MakeHost("default", {{"/network/routing/ipv4DefaultGateway", R"("")"},
                                     {"/network/dns/nameServers", "[]"},
                                     {"/network/ipv6Enabled", "false"}});
    ASSERT_TRUE(OpenTest(*host)) << host->Term().Dump();
    const VirtualTerminal& screen = host->Term().Screen();
    Press(*host, Key::Down);
    TypeShown(*host, "1.2.3");
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(Acknowledge(*host, "Invalid IP or IPv6 address.")) << host->Term().Dump();
    EXPECT_EQ(CommandCount(*host, {"zenkping"}), 0u);
    // The refused field has the focus: what is typed replaces it. The host name emptied: no resolve test.
    TypeShown(*host, "10.20.30.5");
    Press(*host, Key::Down);
    Fill(*host, {"192.0.2.77", ""});
    ASSERT_TRUE(RunToEnd(*host)) << host->Term().Dump();
    EXPECT_TRUE(screen.Contains("Pinging address (10.20.30.5). OK.")) << host->Term().Dump();
    EXPECT_TRUE(screen.Contains("Pinging address (192.0.2.77). Failed."));
    EXPECT_FALSE(screen.Contains("Resolving hostname"));
    EXPECT_EQ(CommandCount(*host, {"zenkping"}), 2u) << HostRecords(*host, "commands.log");
}

TEST(NetworkCheck, EscLeavesWhileAPingStillRuns) {
    auto host = MakeHost("default");
    ASSERT_TRUE(OpenTest(*host)) << host->Term().Dump();
    // An address nobody answers: its ping waits for its three replies.
    Fill(*host, {"192.0.2.78", "", "", ""});
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForText("Pinging address (192.0.2.78).")) << host->Term().Dump();
    ASSERT_TRUE(host->Term().WaitUntil([] { return PingRunning("192.0.2.78"); }));
    host->Term().Press(Key::Escape);
    // Neither the run nor the dialog under it: the menu's own help for the entry starts with the dialog's
    // words, but not with its fields.
    ASSERT_TRUE(host->Term().WaitFor([](const VirtualTerminal& screen) {
        return MenuShown(screen) && !screen.Contains(kRunTitle) && !screen.Contains(kTestMark);
    })) << host->Term().Dump();
    ASSERT_TRUE(host->Term().WaitForQuiet(300ms));
    // Back in the menu before the ping has ended: the run did not wait for it.
    EXPECT_TRUE(PingRunning("192.0.2.78"));
    EXPECT_FALSE(host->Term().Screen().Contains("Failed."));
    // It ends on its own, and the console goes on.
    EXPECT_TRUE(host->Term().WaitUntil([] { return !PingRunning("192.0.2.78"); }, 60s));
    ASSERT_TRUE(OpenFromMenu(*host, 0, kTestMark)) << host->Term().Dump();
}

// The resolve test has the host's name out long enough to end the console meanwhile.
TEST(NetworkCheck, HostsFileStaysWholeHoweverTheConsoleEndsDuringAResolveTest) {
    auto host = MakeHostWithSilentNameServers();
    const std::string hosts = HostFile(*host, "/etc/hosts");
    ASSERT_NE(hosts.find(kFqdn), std::string::npos) << hosts;
    const auto nameOut = [&] { return HostFile(*host, "/etc/hosts").find(kFqdn) == std::string::npos; };

    enum class Moment { AtOnce, NameOut, AfterTheRun };
    // Whether the ending console puts the file back itself. (The next one putting back what a killed one
    // left is the unit tests' and the kills' business.)
    enum class PutBack { None, AtExit };
    struct Ending {
        const char* what;
        Moment moment;
        PutBack putBack;
        std::function<void(HostConsole&, pid_t)> act;
    };
    const auto signal = [](int number) {
        return [number](HostConsole& h, pid_t console) { h.Term().Signal(number, console); };
    };
    const Ending endings[] = {
        {"SIGTERM at once", Moment::AtOnce, PutBack::None, signal(SIGTERM)},
        {"SIGTERM with the name out", Moment::NameOut, PutBack::AtExit, signal(SIGTERM)},
        {"SIGTERM after the run", Moment::AfterTheRun, PutBack::None, signal(SIGTERM)},
        {"a resize with the name out", Moment::NameOut, PutBack::AtExit,
         [](HostConsole& h, pid_t console) { h.Term().Resize(90, 28, console); }},
        // A serial or SSH line going away.
        {"SIGHUP with the name out", Moment::NameOut, PutBack::AtExit, signal(SIGHUP)},
    };
    pid_t console = 0;
    size_t atExit = 0;
    for (const Ending& ending : endings) {
        SCOPED_TRACE(ending.what);
        console = host->WaitForConsole(console);
        ASSERT_TRUE(OpenTest(*host)) << host->Term().Dump();
        Fill(*host, {"", "", ""});
        host->Term().Press(Key::Enter);
        if (ending.moment == Moment::NameOut) {
            ASSERT_TRUE(host->Term().WaitUntil(nameOut));
        }
        if (ending.moment == Moment::AfterTheRun) {
            ASSERT_TRUE(host->Term().WaitForText("Resolving hostname (kovo-host-01.lab.example). OK."));
        }
        ending.act(*host, console);
        // Gone for good, its exit handlers run: a sanitizer build has helpers of the same name meanwhile.
        ASSERT_TRUE(host->Term().WaitUntil([console] { return kill(console, 0) != 0; }));
        if (ending.putBack == PutBack::AtExit) {
            EXPECT_EQ(HostFile(*host, "/etc/hosts"), hosts);
            EXPECT_TRUE(WaitForSyslogCount(
                *host, {"]: Put back /etc/hosts after an interrupted resolve test"}, ++atExit))
                << host->Syslog();
        }
        EXPECT_EQ(HostFile(*host, "/etc/hosts"), hosts);
        EXPECT_FALSE(HostHasHostsBackup(*host));
    }

    // A restart request waits for the operator to log out: the test runs to its end and puts the
    // file back itself.
    console = host->WaitForConsole(console);
    ASSERT_TRUE(OpenTest(*host)) << host->Term().Dump();
    Fill(*host, {"", "", ""});
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitUntil(nameOut));
    host->Term().Signal(SIGUSR2, console);
    EXPECT_TRUE(host->Term().WaitForText("Resolving hostname (kovo-host-01.lab.example). OK."))
        << host->Term().Dump();
    EXPECT_EQ(kill(console, 0), 0);
    EXPECT_EQ(HostFile(*host, "/etc/hosts"), hosts);
}

}  // namespace
