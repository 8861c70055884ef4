// Kills at random moments of the console's writes to the host: the store as `kovo-sim set` and the
// network window's change application write it, and the hosts file around a resolve test (SIGKILL and
// SIGHUP there, each followed by the console's next start). After each kill the store parses and holds
// the state before the write or after it, and the hosts file is byte for byte what it was.
// KOVO_KILLS sets the kills of each kind (a few by default; tests/kill-at-random.sh runs many).
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <random>
#include <thread>

#include "NetworkSteps.h"

namespace {

using namespace KovoE2e;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto kNameOutFor = std::chrono::seconds(2);

int Kills() {
    const char* text = std::getenv("KOVO_KILLS");
    const int kills = text ? std::atoi(text) : 0;
    return kills > 0 ? kills : 4;
}

// One generator for the run, its seed printed so that a failing run can be repeated (KOVO_KILL_SEED).
std::mt19937& Random() {
    static std::mt19937 generator = [] {
        const char* text = std::getenv("KOVO_KILL_SEED");
        const unsigned seed =
            text ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : std::random_device()();
        std::printf("kill seed %u\n", seed);
        return std::mt19937(seed);
    }();
    return generator;
}

std::chrono::microseconds Uniform(std::chrono::microseconds most) {
    return std::chrono::microseconds(std::uniform_int_distribution<long>(0, most.count())(Random()));
}

// What the kills found: the store as it was, as it would be after the writer, or (for a writer of
// several steps) some of its settings written; and how many kills came before the writer was done.
struct Tally {
    int before = 0, after = 0, between = 0, cutShort = 0;
    void Count(const nlohmann::json& was, const nlohmann::json& wouldBe, const nlohmann::json& now) {
        ++(now == was ? before : now == wouldBe ? after : between);
    }
    void Print(const char* what) const {
        std::printf(
            "%s: %d kills, %d before the writer was done; the store held the state before %d times, "
            "after %d, between %d\n",
            what, before + after + between, cutShort, before, after, between);
    }
};

// What one application of a new search suffix writes, each in a step of its own: the search list
// rebuilt as the domain and the suffix, the DNS save's count, and IPv6 kept on for the next boot.
nlohmann::json WithSuffixApplied(nlohmann::json store, const std::string& suffix) {
    nlohmann::json& dns = store["network"]["dns"];
    dns["searchDomains"] = {dns["domain"], suffix};
    dns["saved"] = dns.value("saved", 0) + 1;
    store["boot"]["pending"]["ipv6Enabled"] = true;
    return store;
}

// Where a store a change application was killed in holds something of neither state: the application
// writes one setting at a time, and rebuilds a list (name servers, search domains) from empty one
// entry per write. So each value is the one before or the one after, and each list the old one or the
// start of the new one. Empty when there is no such place.
std::string NeitherBeforeNorAfter(const nlohmann::json& before, const nlohmann::json& after,
                                  const nlohmann::json& now, const std::string& where = "") {
    if (now.is_object() && (before.is_object() || after.is_object())) {
        nlohmann::json keys = nlohmann::json::object();
        for (const nlohmann::json* store : {&before, &after, &now})
            if (store->is_object())
                for (const auto& [key, ignored] : store->items()) keys[key] = true;
        const auto at = [](const nlohmann::json& store, const std::string& key) {
            return store.is_object() && store.contains(key) ? store[key] : nlohmann::json();
        };
        for (const auto& [key, ignored] : keys.items()) {
            const std::string found =
                NeitherBeforeNorAfter(at(before, key), at(after, key), at(now, key), where + "/" + key);
            if (!found.empty()) return found;
        }
        return "";
    }
    if (now == before || now == after) return "";
    const bool startOfNew = now.is_array() && after.is_array() && now.size() <= after.size() &&
                            std::equal(now.begin(), now.end(), after.begin());
    return startOfNew
               ? ""
               : where + " holds " + now.dump() + ", before " + before.dump() + ", after " + after.dump();
}

// `kovo-sim set` in a process group of its own, so that a kill reaches the process inside the host too.
pid_t StartSet(const HostConsole& host, const std::string& pointer, const std::string& value) {
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::setpgid(0, 0);
        const char* argv[] = {KOVO_E2E_LAUNCHER, "set",         host.HostDir().c_str(),
                              pointer.c_str(),   value.c_str(), nullptr};
        ::execv(argv[0], const_cast<char* const*>(argv));
        _exit(127);
    }
    ::setpgid(pid, pid);
    return pid;
}

// Kills the group at once and reaps its leader; true when the leader was still running.
bool KillGroup(pid_t leader) {
    ::kill(-leader, SIGKILL);
    int status = 0;
    while (::waitpid(leader, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFSIGNALED(status);
}

TEST(KillAtRandom, StoreSetLeavesTheStateBeforeOrAfter) {
    auto host = MakeHost("default");
    constexpr const char* kPointer = "/hardware/assetTag";
    // How long one whole set takes here: the kills land anywhere in that time.
    const auto started = Clock::now();
    ASSERT_TRUE(SetStore(*host, kPointer, R"("measured")"));
    const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - started);

    Tally tally;
    for (int i = 0; i < Kills(); ++i) {
        const nlohmann::json before = StoreOnDisk(*host);
        ASSERT_FALSE(before.is_discarded());
        nlohmann::json after = before;
        after[nlohmann::json::json_pointer(kPointer)] = "kill-" + std::to_string(i);
        const pid_t set = StartSet(*host, kPointer, after[nlohmann::json::json_pointer(kPointer)].dump());
        std::this_thread::sleep_for(Uniform(whole));
        tally.cutShort += KillGroup(set);
        const nlohmann::json now = StoreOnDisk(*host);
        ASSERT_TRUE(now == before || now == after) << "kill " << i << ": " << now.dump();
        tally.Count(before, after, now);
    }
    tally.Print("kovo-sim set");
}

TEST(KillAtRandom, ChangeApplicationLeavesEachSettingBeforeOrAfter) {
    auto host = MakeHost("default", {}, Restarting());
    // One uninterrupted application: how long it takes, and that it changes nothing else.
    pid_t console = host->WaitForConsole();
    ASSERT_TRUE(OpenNetwork(*host)) << host->Term().Dump();
    EditSuffixes(*host, "measured.example");
    const nlohmann::json first = StoreOnDisk(*host);
    LeaveAnswering(*host, "y");
    const auto started = Clock::now();
    ASSERT_TRUE(host->WaitForSyslog({"]: Network settings changed."})) << host->Syslog();
    const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - started);
    std::printf("one change application: %ld ms\n", static_cast<long>(whole.count() / 1000));
    ASSERT_EQ(StoreOnDisk(*host), WithSuffixApplied(first, "measured.example"))
        << nlohmann::json::diff(first, StoreOnDisk(*host));
    host->Term().Signal(SIGKILL, console);

    Tally tally;
    for (int i = 0; i < Kills(); ++i) {
        console = host->WaitForConsole(console);
        ASSERT_GT(console, 0);
        ASSERT_TRUE(OpenNetwork(*host)) << host->Term().Dump();
        const std::string suffix = "k" + std::to_string(i) + ".example";
        EditSuffixes(*host, suffix);
        const nlohmann::json before = StoreOnDisk(*host);
        const nlohmann::json after = WithSuffixApplied(before, suffix);
        const size_t applied = host->SyslogLines({"]: Network settings changed."}).size();
        LeaveAnswering(*host, "y");
        std::this_thread::sleep_for(Uniform(whole));
        host->Term().Signal(SIGKILL, console);
        ASSERT_TRUE(host->Term().WaitUntil([console] { return kill(console, 0) != 0; }));
        tally.cutShort += host->SyslogLines({"]: Network settings changed."}).size() == applied ? 1 : 0;
        const nlohmann::json now = StoreOnDisk(*host);
        ASSERT_FALSE(now.is_discarded()) << "kill " << i << " left a store that does not parse";
        ASSERT_EQ(NeitherBeforeNorAfter(before, after, now), "") << "kill " << i;
        tally.Count(before, after, now);
    }
    tally.Print("change application");
}

// Each resolve test has the name out for about two seconds.
TEST(KillAtRandom, ResolveTestLeavesTheHostsFileWholeAfterTheNextStart) {
    auto host = MakeHostWithSilentNameServers();
    const std::string hosts = HostFile(*host, "/etc/hosts");
    ASSERT_NE(hosts.find(kFqdn), std::string::npos) << hosts;
    const auto nameOut = [&] { return HostFile(*host, "/etc/hosts").find(kFqdn) == std::string::npos; };

    int nameWasOut = 0, hangUps = 0;
    pid_t console = host->WaitForConsole();
    for (int i = 0; i < Kills(); ++i) {
        ASSERT_GT(console, 0);
        ASSERT_TRUE(OpenTest(*host)) << host->Term().Dump();
        Fill(*host, {"", "", ""});  // only the host name is tested
        host->Term().Press(Key::Enter);
        // Every other kill lands while the name is out; the rest anywhere in the test's run. SIGHUP and
        // SIGKILL take turns within each.
        if (i % 4 < 2) {
            ASSERT_TRUE(host->Term().WaitUntil(nameOut));
        }
        std::this_thread::sleep_for(Uniform(i % 4 < 2 ? kNameOutFor / 2 : kNameOutFor + 1s));
        nameWasOut += nameOut() ? 1 : 0;
        const bool hangUp = i % 2 == 1;
        hangUps += hangUp ? 1 : 0;
        host->Term().Signal(hangUp ? SIGHUP : SIGKILL, console);
        ASSERT_TRUE(host->Term().WaitUntil([console] { return kill(console, 0) != 0; }));
        // The next console puts back what was left as it starts.
        console = host->WaitForConsole(console);
        EXPECT_TRUE(host->Term().WaitUntil([&] { return HostFile(*host, "/etc/hosts") == hosts; }))
            << "kill " << i << (hangUp ? " (SIGHUP)" : " (SIGKILL)") << "\n"
            << HostFile(*host, "/etc/hosts");
        ASSERT_FALSE(HostHasHostsBackup(*host)) << "kill " << i;
    }
    std::printf("resolve test: %d kills (%d SIGHUP), %d with the name out\n", Kills(), hangUps, nameWasOut);
    EXPECT_GT(nameWasOut, 0) << "no kill landed while the name was out";
}

}  // namespace
