#include <gtest/gtest.h>

#include "../support/Recording.h"
#include "system/KovoTimeoutDialog.h"
#include "system/ShellTimeoutDialog.h"
#include "system/TroubleShootingWindow.h"

namespace Kovo {
namespace {

using namespace Testing;
using Window = TroubleShootingWindow;

const std::string kShellStatus = "/bin/sh: sh /etc/init.d/QorShell status";
const std::string kSshStatus = "/bin/sh: sh /etc/init.d/SSH status";
const std::string kHcl = "/bin/hcl-cmd: hcl-cmd -U root hostsvc/";
constexpr int kNotRunning = 3;

nlohmann::json HostDocument() {
    return {
        {"firewall", {{"rulesets", {{{"id", "sshServer"}, {"enabled", false}}}}}},
        {"advancedOptions",
         {{"UserVars", {{"KovoTimeOut", {{"type", "integer"}, {"value", 90}, {"min", 0}, {"max", 3600}}}}}}}};
}

class TroubleshootingActions : public ScriptedScreen {
  protected:
    void SetUp() override {
        ScriptedScreen::SetUp();
        Frame::_loginName = "root";
        Frame::_idleTimeout = 600;
    }
    void TearDown() override {
        Frame::_idleTimeout = 0;
        ScriptedScreen::TearDown();
    }
    // Services as the host reports them when the window is built.
    void Services(bool shell, bool ssh) {
        host_.status[kShellStatus] = shell ? 0 : kNotRunning;
        host_.status[kSshStatus] = ssh ? 0 : kNotRunning;
    }
    // Builds the window, runs it over the keys (which must end with Esc) and hands it to `check`.
    void RunWindow(const std::string& keys, const std::function<void(Window&)>& check = nullptr) {
        Type(keys);
        TestRootFrame root;
        Window window(&root, host_);
        host_.calls.clear();  // the status queries of the construction are checked on their own
        EXPECT_EQ(window.RunModal(), 1);
        if (check) check(window);
    }

    ScratchStore store_{HostDocument()};
    RecordingHost host_{store_.Get()};
};

TEST_F(TroubleshootingActions, FailingHostToolFallsBackToTheInitScriptAndStillInverts) {
    Services(true, false);
    host_.status[kHcl + "stop_qor_shell"] = 1;
    host_.status[kHcl + "disable_qor_shell"] = 1;
    host_.status["/bin/sh: sh /etc/init.d/QorShell stop"] = 1;
    RunWindow("\n" + Keys::kEsc, [](Window& w) { EXPECT_FALSE(w.ShellEnabled()); });
    EXPECT_EQ(host_.calls, (Calls{kHcl + "stop_qor_shell", "/bin/sh: sh /etc/init.d/QorShell stop",
                                  kHcl + "disable_qor_shell"}));
    // The shell's fall-back never touches the firewall.
    EXPECT_EQ(store_.At("/firewall/rulesets/0/enabled"), false);
}

// Starting through the script opens the firewall (the end-to-end tests' NoHostAgent case); stopping
// through it closes the firewall again.
TEST_F(TroubleshootingActions, SshStoppedThroughItsScriptClosesTheFirewallRuleset) {
    store_.Get()->Update([](nlohmann::json& d) { d["firewall"]["rulesets"][0]["enabled"] = true; });
    Services(false, true);
    host_.status[kHcl + "stop_ssh"] = 1;
    RunWindow(Keys::kDown + "\n" + Keys::kEsc, [](Window& w) { EXPECT_FALSE(w.SshEnabled()); });
    EXPECT_EQ(host_.calls,
              (Calls{kHcl + "stop_ssh", "/bin/sh: sh /etc/init.d/SSH stop", kHcl + "disable_ssh"}));
    EXPECT_EQ(store_.At("/firewall/rulesets/0/enabled"), false);
}

TEST_F(TroubleshootingActions, MissingFirewallRulesetDoesNotStopTheToggle) {
    store_.Get()->Update([](nlohmann::json& d) { d["firewall"]["rulesets"] = nlohmann::json::array(); });
    Services(false, false);
    host_.status[kHcl + "start_ssh"] = 1;
    RunWindow(Keys::kDown + "\n" + Keys::kEsc, [](Window& w) { EXPECT_TRUE(w.SshEnabled()); });
    EXPECT_EQ(host_.calls.back(), kHcl + "enable_ssh");
}

// Shell time-outs: the option tool prints seconds and a newline.
void ShellOptions(RecordingHost& host, const std::string& availability, const std::string& idle) {
    host.output["/sbin/qorcfg-advcfg: qorcfg-advcfg -q -g /UserVars/QoriShellTimeOut"] = availability;
    host.output["/sbin/qorcfg-advcfg: qorcfg-advcfg -q -g /UserVars/QoriShellInteractiveTimeOut"] = idle;
}
std::string SetOption(const char* tool, const char* option, const char* seconds) {
    return std::string("/sbin/") + tool + ": " + tool + " system settings advanced set -o " + option +
           " -i " + seconds;
}

TEST_F(TroubleshootingActions, NewAvailabilityFallsBackToTheLocalToolAndRestartsRunningServices) {
    ShellOptions(host_, "600\n", "600\n");
    const std::string qorcli = SetOption("qorcli", "/UserVars/QoriShellTimeOut", "1800");
    host_.status[qorcli] = 1;
    host_.status[kShellStatus] = kNotRunning;
    host_.status[kSshStatus] = 0;
    EXPECT_EQ(RunOn<ShellTimeoutDialog>(host_, "30\n"), 1);
    EXPECT_EQ(Calls(host_.calls.begin() + 2, host_.calls.end()),
              (Calls{qorcli, SetOption("qorlocalcli", "/UserVars/QoriShellTimeOut", "1800"), kShellStatus,
                     kSshStatus, "/bin/sh: sh /etc/init.d/SSH restart"}));
}

TEST_F(TroubleshootingActions, ConsoleTimeoutRefusalsLeaveTheOptionAlone) {
    // Out of range, then empty, then one the host's option refuses (above its maximum of an hour): each
    // closes the dialog with the option and the session unchanged. The error message opening may discard
    // the key typed right after Enter, so an "x" it ignores anyway comes first.
    for (const std::string& keys :
         std::vector<std::string>{"1441\nx\n", Keys::kBackspace + "\n", "61\nx\n"}) {
        Frame::_idleTimeout = 600;
        EXPECT_EQ(RunOn<KovoTimeoutDialog>(host_, keys), 1) << keys;
        EXPECT_EQ(store_.At("/advancedOptions/UserVars/KovoTimeOut/value"), 90) << keys;
        EXPECT_EQ(Frame::_idleTimeout, 600u) << keys;
    }
}

TEST_F(TroubleshootingActions, ConsoleTimeoutComparesSecondsSoOnlyTheSameSecondsAreUnchanged) {
    // 90 s shows as 1 minute, and 1 minute is 60 s: a change.
    EXPECT_EQ(RunOn<KovoTimeoutDialog>(host_, "\n"), 1);
    EXPECT_EQ(store_.At("/advancedOptions/UserVars/KovoTimeOut/value"), 60);
    // 60 s shows as 1 minute again, and now Enter leaves the session's time-out alone.
    Frame::_idleTimeout = 600;
    EXPECT_EQ(RunOn<KovoTimeoutDialog>(host_, "\n"), 1);
    EXPECT_EQ(Frame::_idleTimeout, 600u);

    // A host without the option reads as ten minutes, and nothing is written.
    store_.Get()->Update([](nlohmann::json& d) { d.erase("advancedOptions"); });
    RunOn<KovoTimeoutDialog>(host_, "3\n", [](KovoTimeoutDialog& d) { EXPECT_EQ(d.CurrentSeconds(), 600u); });
    EXPECT_TRUE(store_.At("/advancedOptions").is_null());
}

}  // namespace
}  // namespace Kovo
