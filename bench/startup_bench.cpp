// Start-up cost of the console as an operator meets it: the real kovo, started by the simulated host's
// launcher in an 80x25 pseudo-terminal, timed from the spawn to its first complete screen; and the
// console's peak resident memory. Measurements only.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "BenchHost.h"
#include "ProcessTree.h"
#include "TermSession.h"

namespace {

using namespace KovoBench;

void BM_StartToFirstPaint(benchmark::State& state) {
    const std::string host = FreshHost("first-paint");
    long peakKb = 0;
    std::size_t bytes = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        KovoTerm::TermSession session(ConsoleOnHost(host));
        if (!session.WaitForText(kLastOfFirstScreen)) {
            state.SkipWithError("the console did not paint its first screen");
            break;
        }
        const auto painted = std::chrono::steady_clock::now();
        state.SetIterationTime(std::chrono::duration<double>(painted - start).count());
        bytes = session.Output().size();

        state.PauseTiming();
        session.WaitForQuiet(std::chrono::milliseconds(200));
        pid_t console = session.WaitForDescendant("kovo");
        if (auto kb = KovoTerm::ProcessTree::StatusKb(console, "VmHWM")) peakKb = std::max(peakKb, *kb);
        Stop(session, console);
        state.ResumeTiming();
    }
    state.counters["kovo_peak_rss_kB"] = double(peakKb);
    state.counters["first_screen_bytes"] = double(bytes);
}
BENCHMARK(BM_StartToFirstPaint)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

// Exec to first frame inside a running host, side by side with the programs that set the console's bar:
// a whiptail menu, a dialog menu and a bare curses program. Each is started the same way (the launcher's
// exec into the host, in a terminal of its own), so what the start costs outside the program is the same
// for all. One iteration is a round that starts each of them once, in turn, so a noisy moment of the
// machine falls on all alike. Reported per program: the mean time from the spawn to its first frame
// and the highest peak resident set (VmHWM) seen.
//
// The console always runs in en_US.UTF-8, so the yardsticks run in it too: loading that locale alone
// costs about 1 MB of resident memory here. whiptail-C is whiptail in the C locale, which loads none,
// for the record.
constexpr const char* kConsoleLocale = "en_US.UTF-8";
struct Program {
    const char* name;
    std::vector<std::string> argv;
    const char* lastOfFirstFrame;
    const char* lang = kConsoleLocale;  // null: the C locale
};

const std::vector<std::string> kWhiptailMenu = {"/usr/bin/whiptail",
                                                "--title",
                                                "KOVO",
                                                "--menu",
                                                "First frame",
                                                "15",
                                                "50",
                                                "4",
                                                "1",
                                                "Configure Password",
                                                "2",
                                                "Configure Lockdown Mode",
                                                "3",
                                                "Configure Management Network",
                                                "4",
                                                "Restart Management Network"};

const Program kPrograms[] = {
    {"kovo", {KOVO_BENCH_CONSOLE}, kLastOfFirstScreen},
    {"whiptail", kWhiptailMenu, "<Cancel>"},
    {"whiptail-C", kWhiptailMenu, "<Cancel>", nullptr},
    {"dialog",
     {"/usr/bin/dialog", "--title", "KOVO", "--menu", "First frame", "15", "50", "4", "1",
      "Configure Password", "2", "Configure Lockdown Mode", "3", "Configure Management Network", "4",
      "Restart Management Network"},
     "<Cancel>"},
    {"bare-curses", {KOVO_BENCH_PROBE}, "KEY 0: none"},
};

// One start of `program` in `host`: seconds to its first frame, and its peak resident set in kB.
std::optional<std::pair<double, long>> StartOnce(const std::string& host, const Program& program) {
    KovoTerm::SpawnOptions options;
    options.argv = {KOVO_BENCH_LAUNCHER, "exec", host, "--"};
    options.argv.insert(options.argv.end(), program.argv.begin(), program.argv.end());
    options.environment = {{"PATH", "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"}};
    if (program.lang) options.environment["LANG"] = program.lang;
    const auto start = std::chrono::steady_clock::now();
    KovoTerm::TermSession session(options);
    if (!session.WaitForText(program.lastOfFirstFrame)) return std::nullopt;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    session.WaitForQuiet(std::chrono::milliseconds(100));
    const std::string leaf = std::filesystem::path(program.argv[0]).filename();
    const pid_t pid = session.WaitForDescendant(leaf);
    const long peakKb = KovoTerm::ProcessTree::StatusKb(pid, "VmHWM").value_or(0);
    Stop(session, pid);
    return std::make_pair(seconds, peakKb);
}

void BM_FirstFrameSideBySide(benchmark::State& state) {
    const std::string host = FreshHost("side-by-side");
    KovoTerm::TermSession hostSession(ConsoleOnHost(host));
    if (!hostSession.WaitForText(kLastOfFirstScreen)) {
        state.SkipWithError("the host did not start");
        return;
    }
    constexpr std::size_t kCount = std::size(kPrograms);
    double seconds[kCount] = {};
    long peakKb[kCount] = {};
    for (auto _ : state) {
        for (std::size_t i = 0; i < kCount; ++i) {
            const auto once = StartOnce(host, kPrograms[i]);
            if (!once) {
                state.SkipWithError((std::string("no first frame from ") + kPrograms[i].name).c_str());
                break;
            }
            seconds[i] += once->first;
            peakKb[i] = std::max(peakKb[i], once->second);
        }
    }
    const double rounds = state.iterations() ? double(state.iterations()) : 1.0;
    for (std::size_t i = 0; i < kCount; ++i) {
        state.counters[std::string(kPrograms[i].name) + "_first_frame_ms"] = 1000.0 * seconds[i] / rounds;
        state.counters[std::string(kPrograms[i].name) + "_peak_rss_kB"] = double(peakKb[i]);
    }
    Stop(hostSession, hostSession.WaitForDescendant("kovo"));
}
BENCHMARK(BM_FirstFrameSideBySide)->Unit(benchmark::kMillisecond)->Iterations(15);

// The same cycle with the console's start-up and the host's boot together: spawn to the host stopped.
void BM_FullCycle(benchmark::State& state) {
    const std::string host = FreshHost("full-cycle");
    for (auto _ : state) {
        KovoTerm::TermSession session(ConsoleOnHost(host));
        if (!session.WaitForText(kLastOfFirstScreen)) {
            state.SkipWithError("the console did not paint its first screen");
            break;
        }
        Stop(session, session.WaitForDescendant("kovo"));
    }
}
BENCHMARK(BM_FullCycle)->Unit(benchmark::kMillisecond)->Iterations(10);

// A move in the System Customization menu as the operator feels it: from the arrow key sent to the detail
// pane showing the newly selected entry, and the bytes the console wrote for it.
void BM_MenuMove(benchmark::State& state) {
    const std::string host = FreshHost("menu-move");
    KovoTerm::TermSession session(ConsoleOnHost(host));
    if (!LogInToMenu(session)) {
        state.SkipWithError("could not log in to the menu");
        Stop(session, session.WaitForDescendant("kovo"));
        return;
    }
    bool down = true;
    std::size_t bytes = 0;
    for (auto _ : state) {
        const std::string title = session.Screen().RowText(1);
        const std::size_t before = session.Output().size();
        const auto start = std::chrono::steady_clock::now();
        session.Press(down ? KovoTerm::Key::Down : KovoTerm::Key::Up);
        if (!session.WaitFor(
                [&](const KovoTerm::VirtualTerminal& screen) { return screen.RowText(1) != title; })) {
            state.SkipWithError("the menu did not move");
            break;
        }
        state.SetIterationTime(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        state.PauseTiming();
        session.WaitForQuiet(100ms);
        bytes += session.Output().size() - before;
        down = !down;
        state.ResumeTiming();
    }
    state.counters["bytes_per_move"] = state.iterations() ? double(bytes) / double(state.iterations()) : 0.0;
    Stop(session, session.WaitForDescendant("kovo"));
}
BENCHMARK(BM_MenuMove)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(40);

}  // namespace

BENCHMARK_MAIN();
