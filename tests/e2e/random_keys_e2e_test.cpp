// Random keys over every screen an operator can reach, logged in, on several hosts, with a fixed seed so
// a failure can be replayed. In the sanitizer build the console writes any sanitizer report to a file of
// the host; there must be none, the console must still answer keys, and the store must still parse.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <string>
#include <thread>

#include "HostSteps.h"
#include "NetworkSteps.h"

namespace {

using namespace KovoE2e;
namespace fs = std::filesystem;

constexpr int kEpisodes = 25;
constexpr int kKeysPerEpisode = 40;
constexpr const char* kReportPrefix = "kovo-sanitizer";
constexpr const char* kApplyQuestion = "Configure Management Network: Confirm";

// Keys weighted towards moving and choosing, with the function keys the screens take, editing keys,
// and text that includes markup characters. Not F12: shutting the host down ends the walk (its own
// tests cover it). Without `escape`, Tab stands for Esc, so a walk stays inside the screen it opened.
Key RandomKey(std::mt19937& random, bool escape) {
    static const Key keys[] = {Key::Up,  Key::Up,     Key::Down,   Key::Down,     Key::Down,      Key::Enter,
                               Key::Tab, Key::Escape, Key::Left,   Key::Right,    Key::Backspace, Key::Home,
                               Key::End, Key::Delete, Key::PageUp, Key::PageDown, Key::F2,        Key::F3,
                               Key::F4,  Key::F11,    Key::Up,     Key::Down,     Key::Down,      Key::Up};
    const Key key = keys[random() % std::size(keys)];
    return key == Key::Escape && !escape ? Key::Tab : key;
}

constexpr const char* kAlphabet = "abcdynqQ 0123456789.:/{}-,";
// Without the answer that applies the network window's changes.
constexpr const char* kAlphabetWithoutYes = "abcdnqQ 0123456789.:/{}-,%";

std::string RandomText(std::mt19937& random, const std::string& alphabet) {
    std::string text;
    for (int i = 0, n = 1 + static_cast<int>(random() % 4); i < n; ++i)
        text += alphabet[random() % alphabet.size()];
    return text;
}

std::vector<std::string> SanitizerReports(const HostConsole& host) {
    std::vector<std::string> reports;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(host.HostDir() + "/upper/var/log", error))
        if (entry.path().filename().string().rfind(kReportPrefix, 0) == 0)
            reports.push_back(entry.path().string());
    return reports;
}

// The menu in front, the left pane in its own colours rather than greyed behind a dialog.
bool MenuActive(const VirtualTerminal& screen) {
    return screen.Contains(kMenuTitle) && screen.CellAt(1, 3).bg.IsIndex(3);
}
// The welcome screen in front: its upper panel in its own colours.
bool WelcomeActive(const VirtualTerminal& screen) {
    return screen.Contains(kWelcomeKeys) && screen.CellAt(0, 0).bg.IsIndex(6);
}

// Backs out of whatever the walk left open and logs in again when it logged out; false when the menu
// could not be reached (the walk then goes on wherever it is).
bool GoToMenu(HostConsole& host) {
    auto& term = host.Term();
    for (int attempt = 0; attempt < 8; ++attempt) {
        const auto& screen = term.Screen();
        if (MenuActive(screen)) return true;
        if (WelcomeActive(screen)) {
            if (OpenLogin(host)) {
                Submit(host, "", kRootPassword);
                term.WaitFor(MenuActive, 5000ms);
            }
        } else if (screen.Contains(kApplyQuestion)) {
            term.Type("n");  // leaving the network window with changes: drop them
        } else {
            // q leaves the log pager; Esc a dialog or a window that hides the menu, and Enter a message
            // that only takes Enter. A lone Esc counts only once the console's Esc delay has passed with
            // no key after it.
            const std::string before = screen.ScreenText();
            if (!screen.Contains(kMenuTitle) && !screen.Contains(kWelcomeKeys)) term.Type("q");
            term.Press(Key::Escape);
            term.Pause(500ms);
            term.WaitForQuiet(200ms, 10000ms);
            if (term.Screen().ScreenText() == before) term.Press(Key::Enter);
        }
        term.WaitForQuiet(200ms, 10000ms);
    }
    return MenuActive(term.Screen());
}

// Random keys and text from `alphabet` typed for `episodes` episodes, each started by `open` from the menu;
// an episode whose screen did not open is left out, and most must have opened.
void Walk(HostConsole& host, std::mt19937& random, int episodes, const std::function<bool()>& open,
          const std::string& alphabet = kAlphabet, bool escape = true) {
    auto& term = host.Term();
    int walked = 0;
    for (int episode = 0; episode < episodes; ++episode) {
        if (!GoToMenu(host) || !open()) continue;
        ++walked;
        for (int i = 0; i < kKeysPerEpisode; ++i) {
            if (random() % 5 == 0) {
                term.Type(RandomText(random, alphabet));
            } else {
                term.Press(RandomKey(random, escape));
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(random() % 8));
        }
        ASSERT_TRUE(term.WaitForQuiet(100ms, 30000ms)) << "no rest in episode " << episode << "\n"
                                                       << term.Dump();
    }
    EXPECT_GE(walked, episodes / 2) << term.Dump();
}

// The console still answers keys, wrote no sanitizer report, and left a store that parses.
void ExpectWhole(HostConsole& host) {
    auto& term = host.Term();
    // Backed out of whatever is open, down to the menu (or the welcome screen, should the way back fail).
    GoToMenu(host);
    auto home = [](const VirtualTerminal& s) { return s.Contains(kMenuTitle) || s.Contains(kWelcomeKeys); };
    EXPECT_TRUE(term.WaitFor(home, 20000ms)) << term.Dump();
    EXPECT_TRUE(term.Running());
    for (const auto& path : SanitizerReports(host)) {
        std::ifstream in(path);
        ADD_FAILURE() << "sanitizer report " << path << ":\n"
                      << std::string(std::istreambuf_iterator<char>(in), {});
    }
    const auto store = StoreOnDisk(host);
    EXPECT_TRUE(!store.is_discarded() && store.is_object()) << "the store no longer parses";
}

std::unique_ptr<HostConsole> WalkedHost(const char* scenario) {
    ConsoleStart start = Restarting();  // a random reset or restart brings the console back
    const std::string report = std::string("log_path=/var/log/") + kReportPrefix;
    start.consoleOnlyEnvironment = {{"ASAN_OPTIONS", report},
                                    {"UBSAN_OPTIONS", report + ":print_stacktrace=1"}};
    return MakeHost(scenario, {}, start);
}

// A walk over the whole menu, or (`networkWindow`) inside the network window alone, whose dialogs take the
// most typing of any screen and where Y writes the host.
struct WalkCase {
    const char* name;
    const char* scenario;
    bool networkWindow;
};

class RandomKeys : public ::testing::TestWithParam<WalkCase> {};

TEST_P(RandomKeys, NoScreenBreaksHangsOrDamagesTheStore) {
    const WalkCase& c = GetParam();
    auto host = WalkedHost(c.scenario);
    auto& term = host->Term();
    ASSERT_TRUE(LogIn(*host, "", kRootPassword)) << term.Dump();
    const std::string network = StoreValue(*host, "/network");
    std::mt19937 random(c.networkWindow ? 20261124 : 20261123);
    // Episodes: from the menu, a random entry opened, then random keys inside whatever it opens.
    const auto openEntry = [&] {
        // Not as far as the reset, whose own tests cover it: a reset restarts the host every time.
        for (int i = 0, n = static_cast<int>(random() % 13); i < n; ++i) term.Press(Key::Down);
        term.Press(Key::Enter);
        return true;
    };
    // The menu keeps its selection between episodes, so the walk starts from its top; keys sent before the
    // window has the keyboard would be discarded, or worse reach the menu, whose recovery screens act
    // without a Y.
    const auto openNetworkDialog = [&] {
        for (int i = 0; i < 14; ++i) term.Press(Key::Up);
        term.Press(Key::Down);
        term.Press(Key::Down);
        term.Press(Key::Enter);
        if (!term.WaitForText(kWindowMark, 10000ms) || !term.WaitForQuiet(200ms, 5000ms)) return false;
        for (int i = 0, n = static_cast<int>(random() % 7); i < n; ++i) term.Press(Key::Down);
        term.Press(Key::Enter);
        return true;
    };
    if (c.networkWindow)
        Walk(*host, random, kEpisodes, openNetworkDialog, kAlphabetWithoutYes, false);
    else
        Walk(*host, random, kEpisodes, openEntry);
    ExpectWhole(*host);
    if (!c.networkWindow) return;
    // Every dialog was opened, typed into and left (each episode ends with N or Esc), never applied. The
    // walk never leaves the window itself: out of it, the menu's recovery screens act without a Y.
    EXPECT_TRUE(host->SyslogLines({"]: Network settings changed."}).empty()) << host->Syslog();
    EXPECT_EQ(StoreValue(*host, "/network"), network);
}

INSTANTIATE_TEST_SUITE_P(Hosts, RandomKeys,
                         ::testing::Values(WalkCase{"default", "default", false},
                                           WalkCase{"nonic", "no-nic", false}, WalkCase{"dvs", "dvs", false},
                                           WalkCase{"defaultNetworkWindow", "default", true},
                                           WalkCase{"dvsNetworkWindow", "dvs", true}),
                         [](const ::testing::TestParamInfo<WalkCase>& info) {
                             return std::string(info.param.name);
                         });

}  // namespace
