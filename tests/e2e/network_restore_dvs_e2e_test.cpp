// Restore xDS on the simulated host: the new host-local port the operator fills in and the management
// interface moved onto it, and the refusals that leave the host's network as it was. A host that fails
// the restore half-way is the unit tests' business.
#include <gtest/gtest.h>

#include "NetworkSteps.h"

namespace {

using namespace KovoE2e;
using nlohmann::json;

constexpr const char* kDialogMark = "Enter the properties for new xDS host local port";
constexpr const char* kChooserMark = "Select the xDS Uplinks (one or more)";
constexpr const char* kErrorTitle = "Restore xDS: Error";
constexpr const char* kVlanRange = "Valid range is 0-4094.";
constexpr const char* kRestored = "Restoring xDS management port on host local port hlp-zk0#5";

// Logs in, opens Network Restore Options and, two entries down, the restore of the distributed port;
// waits for `mark` (the dialog, or the report that takes its place).
bool OpenRestoreDvs(HostConsole& host, const std::string& mark = kDialogMark) {
    if (!LogIn(host, "", kRootPassword) || !OpenFromMenu(host, kRestoreDowns, "Restore xDS")) return false;
    if (!host.Term().WaitForText("Restore Standard Switch")) return false;
    return OpenFromMenu(host, 2, mark);
}

TEST(NetworkRestoreDvs, TheNextHostLocalPortTakesTheValuesTypedAndTheManagementInterface) {
    auto host = MakeHost("dvs-host-local-ports");
    ASSERT_TRUE(OpenRestoreDvs(*host)) << host->Term().Dump();
    const json oldPort = StoreJson(*host, "/network/dvs/0/ports/0");
    TypeShown(*host, "25");

    Press(*host, Key::Down, 2);
    ASSERT_TRUE(PressFor(*host, Key::Enter, kChooserMark, 200ms)) << host->Term().Dump();
    Press(*host, Key::Down);
    host->Term().Type(" ");
    ASSERT_TRUE(host->Term().WaitForText("[X] zennic1")) << host->Term().Dump();
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(Closed(*host, kChooserMark, 200ms)) << host->Term().Dump();

    Press(*host, Key::Up);
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForTextGone(kDialogMark)) << host->Term().Dump();
    EXPECT_TRUE(host->WaitForSyslog({"user.info", std::string("]: ") + kRestored})) << host->Syslog();
    EXPECT_EQ(StoreJson(*host, "/network/dvs/0/ports/7"),
              json::parse(R"({"key": "17", "name": "hlp-zk0#5", "portGroup": "dvpg-management", "vlanId": 25,
                  "blocked": false, "hostLocal": true, "uplinks": ["zennic0", "zennic1"]})"));
    EXPECT_EQ(StoreJson(*host, "/network/zenkNics/0/connection"),
              json::parse(R"({"type": "dvPort", "dvs": "xds0", "port": "17"})"));
    EXPECT_EQ(StoreJson(*host, "/network/dvs/0/ports/0"), oldPort);
    EXPECT_EQ(Lines(HostRecords(*host, "events.log"),
                    std::string("@&!*@*@(obs.user.kovo.dvs.port.restored)") + kRestored)
                  .size(),
              1u)
        << HostRecords(*host, "events.log");
}

TEST(NetworkRestoreDvs, AnotherMakersSwitchIsRefusedWithNothingChanged) {
    auto host = MakeHost("dvs-third-party");
    const std::string before = StoreValue(*host, "/network");
    ASSERT_TRUE(OpenRestoreDvs(*host, kErrorTitle)) << host->Term().Dump();
    EXPECT_TRUE(host->WaitForSyslog({"user.err", "]: Restore xDS refused: xds0 is a 3rd party xDS"}))
        << host->Syslog();
    ASSERT_TRUE(Acknowledge(*host, "on 3rd party xDS.")) << host->Term().Dump();
    EXPECT_EQ(StoreValue(*host, "/network"), before);
}

TEST(NetworkRestoreDvs, ASwitchWithoutUplinksOnThisHostCannotBeChosenFromNorRestored) {
    auto host = MakeHost("dvs-no-uplinks");
    const std::string before = StoreValue(*host, "/network");
    ASSERT_TRUE(OpenRestoreDvs(*host)) << host->Term().Dump();
    // Enter on the uplinks entry, then Enter on the blocked setting's box to restore.
    Press(*host, Key::Down, 2);
    for (int attempt = 0; attempt < 2; ++attempt) {
        host->Term().Press(Key::Enter);
        ASSERT_TRUE(ShowsMessage(*host, "No xDS Uplinks: Error",
                                 "No uplinks are configured on the host for this xDS."))
            << host->Term().Dump();
        ASSERT_TRUE(Acknowledge(*host, "No uplinks are configured"));
        EXPECT_TRUE(host->Term().Screen().Contains(kDialogMark)) << host->Term().Dump();
        if (attempt == 0) Press(*host, Key::Up);
    }
    host->Term().Press(Key::Escape);
    ASSERT_TRUE(host->Term().WaitForTextGone(kDialogMark)) << host->Term().Dump();
    EXPECT_EQ(StoreValue(*host, "/network"), before);
}

TEST(NetworkRestoreDvs, AVlanOutsideZeroTo4094KeepsTheOperatorInTheDialog) {
    auto host = MakeHost("dvs-host-local-ports");
    const std::string before = StoreValue(*host, "/network");
    ASSERT_TRUE(OpenRestoreDvs(*host)) << host->Term().Dump();
    TypeShown(*host, "4095");
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(ShowsMessage(*host, "Invalid VLAN ID", kVlanRange)) << host->Term().Dump();
    EXPECT_TRUE(host->WaitForSyslog({"user.err", "]: Invalid DVPort vlan specified. Valid range is 0-4094."}))
        << host->Syslog();
    ASSERT_TRUE(Acknowledge(*host, kVlanRange));
    // Still in the dialog, which Esc then leaves. (Which values are refused is the unit tests' business.)
    EXPECT_TRUE(host->Term().Screen().Contains(kDialogMark)) << host->Term().Dump();
    host->Term().Press(Key::Escape);
    ASSERT_TRUE(host->Term().WaitForTextGone(kDialogMark)) << host->Term().Dump();
    EXPECT_EQ(StoreValue(*host, "/network"), before);
}

}  // namespace
