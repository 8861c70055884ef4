#include <cstring>
#include <fstream>

#include <gtest/gtest.h>

#include "TempDir.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/CpuInfoImpl.h"
#include "platform/zenkctl/HalvorHostFactory.h"
#include "platform/zenkctl/MemoryInfoImpl.h"
#include "platform/zenkctl/ResourceInfoImpl.h"
#include "platform/zenkctl/SmartCardInfoImpl.h"
#include "platform/zenkctl/SysinfoUtil.h"
#include "platform/zenkctl/ZenkCtlExec.h"

using HostCtl::Lib::HostCtlException;
using nlohmann::json;
using ZenkCtl::Store::HostStore;
using namespace ZenkCtl::Util;

namespace {

class SystemTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::ifstream in(std::string(KOVO_FIXTURES) + "/host.json");
        store = std::make_shared<HostStore>(dir.File("host.json"));
        store->Replace(json::parse(in));
    }
    TempDir dir;
    std::shared_ptr<HostStore> store;
};

}  // namespace

// The offsets are the record's layout: each field is read back from the raw bytes where it must sit.
TEST_F(SystemTest, VersionRecordHoldsTheStoreIdentityAtItsOffsets) {
    unsigned char raw[400];
    std::memset(raw, 0xAA, sizeof raw);
    SysinfoUtil::SysinfoGet(*store, SYSNODE_system_version, raw, 312);
    auto text = [&](size_t offset) { return std::string(reinterpret_cast<const char*>(raw + offset)); };
    EXPECT_EQ(text(0), "KOVO Host");
    EXPECT_EQ(text(32), "1.0.0");
    EXPECT_EQ(text(96), "1.0.0");
    EXPECT_EQ(text(128), "123");
    uint32_t build = 0;
    std::memcpy(&build, raw + 160, 4);
    EXPECT_EQ(build, 123u);
    EXPECT_EQ(raw[312], 0xAA);  // nothing written past the record

    // Over-long text is cut and still terminated inside its field.
    store->Update([](json& d) { d["system"]["version"]["productName"] = std::string(80, 'N'); });
    SysinfoUtil::SysinfoGet(*store, SYSNODE_system_version, raw, 312);
    EXPECT_EQ(text(0), std::string(31, 'N'));
    EXPECT_EQ(text(32), "1.0.0");

    EXPECT_THROW(SysinfoUtil::SysinfoGet(*store, SYSNODE_system_version, raw, 311), HostCtlException);
    EXPECT_THROW(SysinfoUtil::SysinfoGet(*store, 99, raw, sizeof raw), HostCtlException);
    store->Update([](json& d) { d["system"]["version"]["buildNumber"] = "many"; });
    EXPECT_THROW(SysinfoUtil::SysinfoGet(*store, SYSNODE_system_version, raw, 312), HostCtlException);
    HostStore missing(dir.File("nothing.json"));
    EXPECT_THROW(SysinfoUtil::SysinfoGet(missing, SYSNODE_system_version, raw, 312), HostCtlException);
}

TEST_F(SystemTest, BootOptionsRecordCarriesAuditMode) {
    SysinfoBootOptions options{};
    SysinfoUtil::SysinfoGet(*store, SYSNODE_boot_options, &options, sizeof options);
    EXPECT_EQ(options.auditMode, 1);
    EXPECT_EQ(options.pxeBoot, 0);
}

TEST_F(SystemTest, HardwareCpuMemoryAndFirmwareThroughTheHost) {
    const auto host = std::make_unique<ZenkCtl::HalvorHostFactory>(store);
    auto hw = host->GetHardwareInfo();
    EXPECT_EQ(hw->GetVendorName(), "Acme Systems");
    EXPECT_EQ(hw->GetSerialNumber(), "SN-0042");
    EXPECT_EQ(hw->GetBiosInfo().minorRelease, 11);
    EXPECT_EQ(host->GetStorageInfo()->GetAdapterVersion("zenhba0"), "3.0.1");
    EXPECT_THROW(host->GetStorageInfo()->GetAdapterVersion("zenhba9"), HostCtlException);
    EXPECT_EQ(ZenkCtl::Hardware::CpuInfoImpl(store).GetNumCpuPackages(), 2u);
    ZenkCtl::Hardware::MemoryInfoImpl memory(store);
    EXPECT_EQ(memory.GetTotalPages() * memory.GetPageSize(), 16ull << 30);
    store->Update([](json& d) { d["hardware"]["memory"]["totalPages"] = -5; });
    EXPECT_THROW(memory.GetTotalPages(), HostCtlException);
}

TEST_F(SystemTest, SmartCardSlotsAndTokens) {
    ZenkCtl::Hardware::SmartCardInfoImpl cards(store);
    auto slots = cards.GetAllSlots();
    ASSERT_EQ(slots.size(), 2u);
    HostCtl::Hardware::SmartCardToken token;
    EXPECT_FALSE(cards.GetToken(slots[0], token));
    ASSERT_TRUE(cards.GetToken(slots[1], token));
    EXPECT_EQ(token.userIds, (std::vector<std::string>{"", "alice"}));
    EXPECT_THROW(cards.GetToken({7, "ghost"}, token), HostCtlException);
}

TEST_F(SystemTest, KeyboardFirewallAndVms) {
    auto system = ZenkCtl::HalvorHostFactory(store).GetSystemInfo();
    EXPECT_EQ(system->GetKeyboardLayout(), "US Default");
    system->LoadKeyboardMappings("German");
    system->SetKeyboardLayout("German");
    EXPECT_EQ(system->GetKeyboardLayout(), "German");
    EXPECT_THROW(system->SetKeyboardLayout("Klingon"), HostCtlException);
    EXPECT_EQ(system->GetKeyboardLayout(), "German");

    auto ssh = system->GetFirewallRulesetById("sshServer");
    EXPECT_FALSE(ssh->IsEnabled());
    ssh->Enable();
    EXPECT_TRUE(system->GetFirewallRulesetById("sshServer")->IsEnabled());
    EXPECT_THROW(system->GetFirewallRulesetById("nope"), HostCtlException);

    ZenkCtl::Resource::ResourceInfoImpl vms(store);
    EXPECT_TRUE(vms.HasRunningVirtualMachines());
    store->Update([](json& d) { d["vms"][0]["powerState"] = "poweredOff"; });
    EXPECT_FALSE(vms.HasRunningVirtualMachines());
}

TEST(ZenkCtlExecTest, ReturnsExitStatusAndRunsDetachedCommands) {
    EXPECT_EQ(ZenkCtl_Exec("exit 0", false, true), 0);
    EXPECT_EQ(ZenkCtl_Exec("exit 3", false, true), 3);
    EXPECT_EQ(ZenkCtl_Exec("echo logged; exit 4", true, true), 4);
    EXPECT_EQ(ZenkCtl_Exec("kill -9 $$", false, true), -1);
    EXPECT_EQ(ZenkCtl_Exec("/no/such/program", false, true), 127);
    // The environment is the fixed one, not the caller's.
    setenv("KOVO_LEAK", "1", 1);
    EXPECT_EQ(ZenkCtl_Exec("test -z \"$KOVO_LEAK\"", false, true), 0);
    unsetenv("KOVO_LEAK");

    TempDir dir;
    const std::string marker = dir.File("ran");
    EXPECT_EQ(ZenkCtl_Exec("touch " + marker, false, false), 0);
    // Wait (with a generous deadline) for the background command to leave its mark.
    for (int i = 0; i < 1000 && access(marker.c_str(), F_OK) != 0; ++i) usleep(10000);
    EXPECT_EQ(access(marker.c_str(), F_OK), 0);
}
