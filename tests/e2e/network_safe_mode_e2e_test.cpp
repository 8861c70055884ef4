// Restore Standard Switch on the simulated host: the management network and its uplinks moved from the
// distributed switch onto a new standard switch, the entry gone from the restore window afterwards, and a
// host that fails the move half-way told to the operator.
#include <gtest/gtest.h>

#include "NetworkSteps.h"

namespace {

using namespace KovoE2e;
using nlohmann::json;

constexpr const char* kEntry = "Restore Standard Switch";
constexpr const char* kQuestion = "Move the management network onto a standard switch?";
constexpr const char* kMoved =
    "]: Enabling safe mode networking by moving all uplinks to a new management xSwitch";

// Logs in, opens the restore window and the dialog of its second entry.
bool OpenDialog(HostConsole& host) {
    if (!LogIn(host, "", kRootPassword) || !OpenFromMenu(host, kRestoreDowns, kEntry)) return false;
    Press(host, Key::Down);
    return PressFor(host, Key::Enter, kQuestion, 200ms);
}

json Named(const json& list, const std::string& name) {
    for (const auto& member : list)
        if (member["name"] == name) return member;
    return nullptr;
}

json OnPortGroup(const std::string& portGroup) {
    return {{"type", "portGroup"}, {"portGroup", portGroup}};
}

// Esc changes nothing and the entry stays; Enter is no answer; F11 moves, and the entry goes.
TEST(NetworkSafeMode, EscChangesNothingAndF11MovesTheManagementNetworkAndTheEntryGoes) {
    auto host = MakeHost("crowded-switches");
    const json before = StoreJson(*host, "/network");
    ASSERT_TRUE(OpenDialog(*host)) << host->Term().Dump();
    host->Term().Press(Key::Escape);
    ASSERT_TRUE(Closed(*host, kQuestion)) << host->Term().Dump();
    EXPECT_EQ(StoreJson(*host, "/network"), before);
    EXPECT_TRUE(host->SyslogLines({kMoved}).empty()) << host->Syslog();

    // Still offered: the same entry opens the dialog again.
    ASSERT_TRUE(PressFor(*host, Key::Enter, kQuestion, 200ms)) << host->Term().Dump();
    host->Term().Press(Key::Enter);
    ASSERT_TRUE(host->Term().WaitForQuiet(300ms));
    EXPECT_TRUE(host->Term().Screen().Contains(kQuestion));
    EXPECT_EQ(Named(StoreJson(*host, "/network/switches"), "xSwitch2"), nullptr);

    host->Term().Press(Key::F11);
    ASSERT_TRUE(host->Term().WaitForTextGone(kQuestion)) << host->Term().Dump();
    EXPECT_TRUE(host->WaitForSyslog({"user.info", kMoved})) << host->Syslog();
    // The window offers the move once.
    EXPECT_TRUE(host->Term().WaitForTextGone(kEntry)) << host->Term().Dump();

    const json network = StoreJson(*host, "/network");
    const json created = Named(network["switches"], "xSwitch2");
    ASSERT_TRUE(created.is_object()) << network["switches"];
    EXPECT_EQ(created["uplinks"], json({"zennic0", "zennic1"}));
    EXPECT_EQ(created["teaming"]["uplinkOrder"], json({"zennic0", "zennic1"}));
    EXPECT_EQ(created["portGroups"], json::parse(R"([{"name": "Management Network2", "vlanId": 0}])"));
    EXPECT_EQ(network["dvs"][0]["uplinks"], json::array());
    EXPECT_EQ(Named(network["zenkNics"], "zk0")["connection"], OnPortGroup("Management Network2"));
    EXPECT_EQ(Named(network["zenkNics"], "zk0")["enabled"], true);
    EXPECT_EQ(Named(network["zenkNics"], "zk1")["enabled"], false);
    EXPECT_TRUE(host->SyslogLines({"user.err"}).empty()) << host->Syslog();
    // The management address still answers, now through the new switch.
    EXPECT_TRUE(Answers(*host, "10.20.30.41"));
}

TEST(NetworkSafeMode, AFailureHalfWayIsToldAndTheEntryGoes) {
    auto host =
        MakeHost("crowded-switches", {{"/simulation/faults/ZenkNic.ConnectToPortGroup", R"("port busy")"}});
    const pid_t console = host->WaitForConsole();
    ASSERT_TRUE(OpenDialog(*host)) << host->Term().Dump();
    host->Term().Press(Key::F11);
    // The operator is told before the dialog goes, not left to find it in the log.
    ASSERT_TRUE(ShowsMessage(*host, kEntry, "Operation on the management network interface failed."))
        << host->Term().Dump();
    ASSERT_TRUE(
        WaitForSyslogCount(*host, {"user.err", "]: Changing to legacy virtual switch failed: port busy"}, 1))
        << host->Syslog();
    ASSERT_TRUE(Acknowledge(*host, "Operation on the management network interface failed."));
    EXPECT_TRUE(host->WaitForSyslog({"user.info", kMoved})) << host->Syslog();
    // Offered once, however it went, by the same console. (What the move left done is the unit tests'
    // business.)
    EXPECT_TRUE(host->Term().WaitForTextGone(kEntry)) << host->Term().Dump();
    EXPECT_EQ(host->WaitForConsole(), console);
}

}  // namespace
