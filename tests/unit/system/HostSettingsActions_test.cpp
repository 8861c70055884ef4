#include <gtest/gtest.h>

#include <fstream>

#include "../support/Recording.h"
#include "platform/hostctl/HostCtlException.h"
#include "system/KeyboardDialog.h"
#include "system/LockdownDialog.h"
#include "system/RestartAgentsDialog.h"

namespace Kovo {
namespace {

using namespace Testing;

const std::string kAgentsEvent = "event: @&!*@*@(obs.user.kovo.restarting.hostagents)Restarting host agents";
const std::string kStop = "exec: /bin/sh /sbin/services.sh stop";
const std::string kStart = "exec: /bin/sh /sbin/services.sh start";
const std::string kLockdownQuery = "query: hclsvc/auth/lockdown_is_enabled";
const std::string kEnterLockdown = "/bin/hcl-cmd: hcl-cmd -U kovo hclsvc/auth/lockdown_mode_enter";
const std::string kExitLockdown = "/bin/hcl-cmd: hcl-cmd -U kovo hclsvc/auth/lockdown_mode_exit";

nlohmann::json KeyboardHost(const std::string& layout) {
    nlohmann::json layouts = nlohmann::json::array();
    for (int i = 0; i < 12; ++i) layouts.push_back("Layout " + std::to_string(i));
    return {{"system", {{"keyboard", {{"layout", layout}, {"mappingsLoaded", ""}, {"layouts", layouts}}}}}};
}

class HostSettingsActions : public ScriptedScreen {
  protected:
    void SetUp() override {
        ScriptedScreen::SetUp();
        // The operator is not who the lockdown commands run as.
        Frame::_loginName = "root";
    }
    // The progress area as it looked when a call was made.
    void ScreenAt(const std::string& call, std::string& screen) {
        host_.onCall = [call, &screen](const std::string& made) {
            if (made == call) screen = ScreenText();
        };
    }

    ScratchStore store_{KeyboardHost("Layout 9")};
    RecordingHost host_{store_.Get()};
};

// A host that says what went wrong has it shown, markup and all as plain text, in place of "Done.".
TEST_F(HostSettingsActions, AgentsStepShowsWhatTheHostSaysWentWrong) {
    host_.failures[kStop] = "No agent {color:red}here";
    std::string end;
    ScreenAt(kStart, end);
    // Esc at the end is no answer: only Enter closes.
    EXPECT_EQ(RunOn<RestartAgentsDialog>(host_, kF11 + Keys::kEsc + "\n"), 1);
    EXPECT_EQ(host_.calls, (Calls{kAgentsEvent, kStop, kStart}));
    EXPECT_NE(end.find("Stopping management agents. No agent (color:red)here"), std::string::npos) << end;
    EXPECT_EQ(end.find("Stopping management agents. Done."), std::string::npos) << end;
}

TEST_F(HostSettingsActions, AgentsCaptureStartsFirstAndItsFailureOnlySkipsItsLine) {
    std::string duringStop;
    ScreenAt(kStop, duringStop);
    EXPECT_EQ(RunOn<RestartAgentsDialog>(host_, " " + kF11 + "\n"), 1);
    EXPECT_EQ(host_.calls, (Calls{kAgentsEvent, "thread", kStop, kStart}));
    EXPECT_NE(duringStop.find("Collecting host agent live core information. Done."), std::string::npos)
        << duringStop;

    host_.calls.clear();
    host_.threadError = EAGAIN;
    EXPECT_EQ(RunOn<RestartAgentsDialog>(host_, " " + kF11 + "\n"), 1);
    EXPECT_EQ(host_.calls, (Calls{kAgentsEvent, "thread", kStop, kStart}));
    EXPECT_EQ(duringStop.find("Collecting host agent"), std::string::npos) << duringStop;
}

TEST_F(HostSettingsActions, LockdownExitRunsAsTheConsoleUser) {
    host_.answers["hclsvc/auth/lockdown_is_enabled"] = true;
    EXPECT_EQ(
        RunOn<LockdownDialog>(host_, " \n", [](LockdownDialog& d) { EXPECT_FALSE(d.LockdownEnabled()); }), 1);
    EXPECT_EQ(host_.calls, (Calls{kLockdownQuery, kExitLockdown}));
}

TEST_F(HostSettingsActions, KeyboardSpaceChoosesTheLayoutUnderTheCursorAndOnlyThen) {
    // Moving alone chooses nothing.
    EXPECT_EQ(RunOn<KeyboardDialog>(host_, Keys::kUp + Keys::kUp + "\n"), 1);
    EXPECT_EQ(store_.At("/system/keyboard/layout"), "Layout 9");
    // The cursor starts on the current layout (scrolled into view); two up and Space chooses 7.
    EXPECT_EQ(RunOn<KeyboardDialog>(host_, Keys::kUp + Keys::kUp + " " + Keys::kDown + "\n",
                                    [](KeyboardDialog& d) { EXPECT_EQ(d.ChosenIndex(), 7); }),
              1);
    EXPECT_EQ(store_.At("/system/keyboard/layout"), "Layout 7");
    EXPECT_EQ(store_.At("/system/keyboard/mappingsLoaded"), "Layout 7");

    // With an unknown current layout nothing is applied until one is chosen.
    store_.Get()->Update([](nlohmann::json& d) { d["system"]["keyboard"]["layout"] = "Gone"; });
    EXPECT_EQ(RunOn<KeyboardDialog>(host_, "\n", [](KeyboardDialog& d) { EXPECT_EQ(d.ChosenIndex(), -1); }),
              1);
    EXPECT_EQ(store_.At("/system/keyboard/layout"), "Gone");
    EXPECT_EQ(RunOn<KeyboardDialog>(host_, Keys::kDown + " \n"), 1);
    EXPECT_EQ(store_.At("/system/keyboard/layout"), "Layout 1");

    // A store that cannot be read fails to the caller.
    std::ofstream(store_.Get()->Path()) << "{ not a document";
    TestRootFrame root;
    EXPECT_THROW(KeyboardDialog(&root, host_), HostCtl::Lib::HostCtlException);
}

}  // namespace
}  // namespace Kovo
