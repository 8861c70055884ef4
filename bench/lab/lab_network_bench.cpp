// The management network window on a host whose network NetworkManager runs (the network lab), as an
// operator feels it: Enter on "Configure Management Network" to the window settled, and Y on the
// confirmation of a static address to the question whether to keep it. Each iteration starts from a host
// whose network another tool set up; the change is put back with N, outside the timed part.
// Measurements only.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>

#include "LabConsole.h"
#include "Settled.h"

namespace {

using namespace KovoLab;
using Clock = TermSession::Clock;

// Silence that counts as a settled window.
constexpr TermSession::Millis kQuiet = 200ms;

double Seconds(Clock::duration span) {
    return std::chrono::duration<double>(span).count();
}

KovoTerm::SpawnOptions Console() {
    return ConsoleOnLab(std::string(KOVO_LAB_DIR) + "/sanitizer");
}

// A host whose network another tool set up, with a DHCP lease on e0.
bool ForeignHost() {
    Lab(kReset);
    return Lab(kForeignDhcp) == "up" &&
           KovoE2e::WaitFor([] { return KernelIpv4("e0").rfind("192.168.88.1", 0) == 0; }, 30s);
}

void BM_LabNetworkWindowOpen(benchmark::State& state) {
    if (!ForeignHost()) return state.SkipWithError("the lab's host did not get its lease");
    TermSession term(Console());
    WindowSteps steps(term);
    KovoE2e::ConsoleDriver driver(term);
    if (!driver.LogIn(kPassword) || !driver.Select("Configure Management Network"))
        return state.SkipWithError("could not reach the menu's network entry");
    for (auto _ : state) {
        const auto start = Clock::now();
        term.Press(Key::Enter);
        const auto settled = KovoBench::SettledAt(
            term, [](const VirtualTerminal& screen) { return screen.Contains(KovoE2e::kWindowMark); }, kQuiet,
            start, 120s);
        if (!settled) return state.SkipWithError("the network window did not settle");
        state.SetIterationTime(Seconds(*settled - start));

        state.PauseTiming();
        term.Press(Key::Escape);
        const bool back =
            term.WaitFor(KovoE2e::ConsoleDriver::MenuShown, 30s) && term.WaitForQuiet(300ms, 30s);
        state.ResumeTiming();
        if (!back) return state.SkipWithError("could not leave the network window");
    }
}
BENCHMARK(BM_LabNetworkWindowOpen)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

void BM_LabStaticChangeToKeepQuestion(benchmark::State& state) {
    int address = 80;
    for (auto _ : state) {
        state.PauseTiming();
        if (!ForeignHost()) return state.SkipWithError("the lab's host did not get its lease");
        TermSession term(Console());
        WindowSteps steps(term);
        const bool asked =
            term.WaitForText(KovoE2e::kWelcomeKeys, 60s) && steps.OpenNetworkWindow(kPassword) &&
            steps.OpenEntry(KovoE2e::kIpv4Downs, KovoE2e::kStaticChoice) &&
            steps.Choose(1, Key::Down,
                         {"192.168.88." + std::to_string(address++), "255.255.255.0", "192.168.88.1"}) &&
            steps.Accept(KovoE2e::kStaticChoice);
        term.Press(Key::Escape);
        const bool confirming =
            asked && term.WaitForText(KovoE2e::kConfirmTitle, 30s) && term.WaitForQuiet(300ms, 30s);
        state.ResumeTiming();
        if (!confirming) return state.SkipWithError("could not set a static address up to the confirmation");

        const auto start = Clock::now();
        term.Type("y");
        const auto shown = KovoBench::SettledAt(
            term, [](const VirtualTerminal& screen) { return screen.Contains(kKeepQuestion); }, 0ms, start,
            120s);
        if (!shown) return state.SkipWithError("the question to keep the change did not come");
        state.SetIterationTime(Seconds(*shown - start));

        state.PauseTiming();
        term.Type("n");
        const bool restored = term.WaitForText("Network Configuration Restored", 60s);
        state.ResumeTiming();
        if (!restored) return state.SkipWithError("the change was not put back");
    }
}
BENCHMARK(BM_LabStaticChangeToKeepQuestion)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

// The lab is started before the benchmarks and stopped after them.
int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (std::system((std::string(KOVO_NM_LAB) + " start " + KovoE2e::Quote(KOVO_LAB_DIR)).c_str()) != 0) {
        std::cerr << "lab_network_bench: the network lab did not start\n";
        return 1;
    }
    InstallConsole();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return std::system((std::string(KOVO_NM_LAB) + " stop " + KovoE2e::Quote(KOVO_LAB_DIR)).c_str()) == 0 ? 0
                                                                                                          : 1;
}
