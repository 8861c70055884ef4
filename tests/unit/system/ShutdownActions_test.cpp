#include <gtest/gtest.h>

#include "../support/Recording.h"
#include "system/RestoreDialog.h"
#include "system/ShutdownDialog.h"

namespace Kovo {
namespace {

using namespace Testing;

const std::string kShutdownEvent = "event: @&!*@*@(obs.user.kovo.shutdown.host)Shutting down host";
const std::string kRebootEvent = "event: @&!*@*@(obs.user.kovo.reboot.host)Rebooting host";
const std::string kResetEvent =
    "event: @&!*@*@(obs.user.kovo.restore.factory.defaults)Restoring factory defaults";
const std::string kReset = "shell: /sbin/firmwareConfig.py --reset-only > /dev/null 2>&1";

class ShutdownActions : public ScriptedScreen {
  protected:
    // Runs a dialog over the typed keys; -100 when the host went down instead of the dialog returning.
    template <typename D>
    int Run(const std::string& keys) {
        try {
            return RunOn<D>(host_, keys);
        } catch (const HostWentDown&) {
            return -100;
        }
    }
    RecordingHost host_;
};

// Esc leaves without touching the host; F2 shuts it down, its VMs kept unless the box is checked, and waits
// for it to go even when the power command ran and failed: only "could not run" (-1) comes back.
TEST_F(ShutdownActions, EscLeavesAndShutDownKeepsVmsUnlessTheBoxIsChecked) {
    EXPECT_EQ(Run<ShutdownDialog>(" x\n" + Keys::kEsc), 0);
    EXPECT_TRUE(host_.calls.empty());
    std::string screenAtPowerOff;
    host_.onCall = [&](const std::string& call) {
        if (call.rfind("powerOffVms", 0) == 0) screenAtPowerOff = ScreenText();
    };
    EXPECT_EQ(Run<ShutdownDialog>(kF2), -100);
    EXPECT_EQ(host_.calls, (Calls{kShutdownEvent, "powerOffVms", "shell: poweroff", "wait"}));
    // The operator sees what is happening before anything is powered off.
    EXPECT_NE(screenAtPowerOff.find("Shut Down Host"), std::string::npos) << screenAtPowerOff;
    EXPECT_NE(screenAtPowerOff.find("Shutdown in progress..."), std::string::npos);

    // A power command that fails otherwise still leaves the console waiting for the host to go.
    host_.status["shell: poweroff"] = 1;
    host_.calls.clear();
    EXPECT_EQ(Run<ShutdownDialog>(kF2), -100);
    EXPECT_EQ(host_.calls, (Calls{kShutdownEvent, "powerOffVms", "shell: poweroff", "wait"}));
}

TEST_F(ShutdownActions, UnrunnablePowerCommandReturnsToTheDialogAndEveryPressPostsAgain) {
    host_.status["shell: poweroff"] = -1;
    host_.status["shell: reboot"] = -1;
    // Each next step is typed once the previous one has run: a dialog coming back discards keys typed
    // ahead of it. Space twice leaves the box unchecked again.
    std::vector<std::string> next{"  " + kF2, " " + kF11, Keys::kEsc};
    host_.onCall = [&](const std::string& call) {
        if (call.rfind("shell: ", 0) == 0 && !next.empty()) {
            Type(next.front());
            next.erase(next.begin());
        }
    };
    EXPECT_EQ(Run<ShutdownDialog>(kF2), 0);
    EXPECT_EQ(host_.calls, (Calls{kShutdownEvent, "powerOffVms", "shell: poweroff",  //
                                  kShutdownEvent, "powerOffVms", "shell: poweroff",  //
                                  kRebootEvent, "powerOffVms --terminate", "shell: reboot"}));
}

TEST_F(ShutdownActions, AfterResetOnlyEnterRestartsAndNothingIsReadAfterwards) {
    std::string screenAtReboot;
    host_.onCall = [&](const std::string& call) {
        if (call == "shell: reboot -f") screenAtReboot = ScreenText();
    };
    // Esc and other keys after the reset are ignored; the key after Enter is never read.
    EXPECT_EQ(Run<RestoreDialog>(kF11 + Keys::kEsc + "x" + kF11 + "\n" + Keys::kEsc), -100);
    EXPECT_EQ(host_.calls, (Calls{kResetEvent, kReset, "shell: reboot -f", "spin"}));
    EXPECT_NE(screenAtReboot.find("Default settings are restored."), std::string::npos) << screenAtReboot;
    EXPECT_NE(screenAtReboot.find("<Enter> Restart Host"), std::string::npos);
    EXPECT_EQ(screenAtReboot.find("Reset System Configuration now?"), std::string::npos);
}

TEST_F(ShutdownActions, UnrunnableRebootAfterResetReturns) {
    host_.status["shell: reboot -f"] = -1;
    EXPECT_EQ(Run<RestoreDialog>(kF11 + "\n"), 0);
    EXPECT_EQ(host_.calls, (Calls{kResetEvent, kReset, "shell: reboot -f"}));
}

}  // namespace
}  // namespace Kovo
