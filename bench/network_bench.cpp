// The management network window as an operator feels it, on one booted host per benchmark: from the key
// sent to the screen settled, i.e. to the last byte the console wrote before going quiet. Opening the
// window from the main menu, and applying a change from the confirmation's "y" back to the main menu.
// Measurements only.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <fstream>
#include <string>

#include "BenchHost.h"
#include "TermSession.h"

namespace {

using namespace KovoBench;
using KovoTerm::Key;
using KovoTerm::TermSession;
using KovoTerm::VirtualTerminal;

constexpr const char* kMenuTitle = "System Customization";
constexpr const char* kWindowMark = "VLAN (optional)";
constexpr const char* kConfirmTitle = "Configure Management Network: Confirm";
constexpr const char* kSuffixesMark = "Use spaces or commas";
// From the menu's first entry, Configure Password: Lockdown, then the network.
constexpr int kNetworkDowns = 2;
// From the window's first entry, Network Adapters (the blank line is skipped).
constexpr int kSuffixDowns = 5;
// Silence that counts as a settled screen; later output is reported apart.
constexpr TermSession::Millis kQuiet = 200ms;

double Seconds(TermSession::Clock::duration span) {
    return std::chrono::duration<double>(span).count();
}

bool MenuShown(const VirtualTerminal& screen) {
    return screen.Contains(kMenuTitle) && !screen.Contains("Authentication Required") &&
           !screen.Contains(kWindowMark) && !screen.Contains(kConfirmTitle);
}

// Lines of a file the host wrote (relative to its directory) holding `part`.
std::size_t LinesWith(const std::string& hostDir, const std::string& file, const std::string& part) {
    std::ifstream in(hostDir + "/upper" + file);
    std::size_t count = 0;
    for (std::string line; std::getline(in, line);) count += line.find(part) != std::string::npos ? 1 : 0;
    return count;
}

// Each key waits for the screen it leads to: a screen discards keys typed while it is being drawn.
bool PressSettled(TermSession& session, Key key, int times, TermSession::Millis quiet) {
    for (int i = 0; i < times; ++i) {
        session.Press(key);
        if (!session.WaitForQuiet(quiet)) return false;
    }
    return true;
}

// Logged in, with the menu's network entry selected.
bool AtNetworkEntry(TermSession& session) {
    return LogInToMenu(session) && PressSettled(session, Key::Down, kNetworkDowns, 60ms);
}

bool OpenWindow(TermSession& session) {
    session.Press(Key::Enter);
    return session.WaitForText(kWindowMark) && session.WaitForQuiet(kQuiet);
}

// Esc out of a window without changes; the menu keeps the network entry selected.
bool LeaveUnchanged(TermSession& session) {
    session.Press(Key::Escape);
    return session.WaitFor(MenuShown) && session.WaitForQuiet(300ms);
}

// In the open window: new suffixes typed and accepted, then Esc up to the settled confirmation.
bool EditSuffixesAndLeave(TermSession& session, const std::string& suffixes) {
    if (!PressSettled(session, Key::Down, kSuffixDowns, 60ms)) return false;
    session.Press(Key::Enter);
    if (!session.WaitForText(kSuffixesMark) || !session.WaitForQuiet(kQuiet)) return false;
    session.Type(suffixes);
    if (!session.WaitForText(suffixes) || !session.WaitForQuiet(80ms)) return false;
    session.Press(Key::Enter);
    if (!session.WaitForTextGone(kSuffixesMark) || !session.WaitForQuiet(kQuiet)) return false;
    session.Press(Key::Escape);
    return session.WaitForText(kConfirmTitle) && session.WaitForQuiet(kQuiet);
}

// Bytes the console still wrote within a second after a screen was taken as settled: a late repaint the
// quiet period missed would show here.
std::size_t LateBytes(TermSession& session) {
    const std::size_t before = session.Output().size();
    session.WaitForQuiet(1000ms);
    return session.Output().size() - before;
}

void BM_NetworkWindowOpen(benchmark::State& state) {
    const std::string host = FreshHost("network-open");
    TermSession session(ConsoleOnHost(host));
    if (!AtNetworkEntry(session)) {
        state.SkipWithError("could not reach the menu's network entry");
        Stop(session, session.WaitForDescendant("kovo"));
        return;
    }
    std::size_t bytes = 0, late = 0;
    for (auto _ : state) {
        const std::size_t before = session.Output().size();
        const auto start = TermSession::Clock::now();
        session.Press(Key::Enter);
        const auto settled = SettledAt(
            session, [](const VirtualTerminal& screen) { return screen.Contains(kWindowMark); }, kQuiet,
            start);
        if (!settled) {
            state.SkipWithError("the network window did not settle");
            break;
        }
        state.SetIterationTime(Seconds(*settled - start));

        state.PauseTiming();
        bytes += session.Output().size() - before;
        late += LateBytes(session);
        const bool back = LeaveUnchanged(session);
        state.ResumeTiming();
        if (!back) {
            state.SkipWithError("could not leave the network window");
            break;
        }
    }
    const double n = state.iterations() ? double(state.iterations()) : 1.0;
    state.counters["bytes_per_open"] = double(bytes) / n;
    state.counters["late_bytes"] = double(late);
    Stop(session, session.WaitForDescendant("kovo"));
}
BENCHMARK(BM_NetworkWindowOpen)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_NetworkChangeApply(benchmark::State& state) {
    static int change = 0;  // every iteration of every run asks for suffixes the host does not have yet
    const std::string host = FreshHost("network-apply");
    TermSession session(ConsoleOnHost(host));
    if (!AtNetworkEntry(session)) {
        state.SkipWithError("could not reach the menu's network entry");
        Stop(session, session.WaitForDescendant("kovo"));
        return;
    }
    const std::string syslog = "/var/log/syslog.log", commands = "/var/log/kovo-sim/commands.log";
    const std::string changed = "]: Network settings changed.", refresh = "internalsvc/refresh";
    std::size_t bytes = 0, late = 0, applied = 0, refreshed = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const std::string suffixes = "b" + std::to_string(++change) + ".example";
        const bool asked = OpenWindow(session) && EditSuffixesAndLeave(session, suffixes);
        const std::size_t changesBefore = LinesWith(host, syslog, changed);
        const std::size_t refreshesBefore = LinesWith(host, commands, refresh);
        state.ResumeTiming();
        if (!asked) {
            state.SkipWithError("could not edit the suffixes up to the confirmation");
            break;
        }

        const std::size_t before = session.Output().size();
        const auto start = TermSession::Clock::now();
        session.Type("y");
        const auto settled = SettledAt(session, MenuShown, kQuiet, start);
        if (!settled) {
            state.SkipWithError("the menu did not settle after the change");
            break;
        }
        state.SetIterationTime(Seconds(*settled - start));

        state.PauseTiming();
        bytes += session.Output().size() - before;
        late += LateBytes(session);
        // The change really ran: the console logged it and the host agent was refreshed.
        const bool ran = session.WaitUntil(
            [&] {
                return LinesWith(host, syslog, changed) > changesBefore &&
                       LinesWith(host, commands, refresh) > refreshesBefore &&
                       LinesWith(host, syslog, suffixes) > 0;
            },
            10000ms);
        applied += LinesWith(host, syslog, changed) - changesBefore;
        refreshed += LinesWith(host, commands, refresh) - refreshesBefore;
        state.ResumeTiming();
        if (!ran) {
            state.SkipWithError("the change left no trace on the host");
            break;
        }
    }
    const double n = state.iterations() ? double(state.iterations()) : 1.0;
    state.counters["bytes_per_apply"] = double(bytes) / n;
    state.counters["late_bytes"] = double(late);
    state.counters["changes_logged"] = double(applied);
    state.counters["agent_refreshes"] = double(refreshed);
    Stop(session, session.WaitForDescendant("kovo"));
}
BENCHMARK(BM_NetworkChangeApply)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
