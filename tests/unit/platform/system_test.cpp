#include <cstring>
#include <fstream>

#include <gtest/gtest.h>

#include "TempDir.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/CpuInfoImpl.h"
#include "platform/zenkctl/HalvorHostFactory.h"
#include "platform/zenkctl/MemoryInfoImpl.h"
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

TEST_F(SystemTest, AdaptersCpuAndMemoryThroughTheHost) {
    const auto host = std::make_unique<ZenkCtl::HalvorHostFactory>(store);
    EXPECT_EQ(host->GetStorageInfo()->GetAdapterVersion("zenhba0"), "3.0.1");
    EXPECT_THROW(host->GetStorageInfo()->GetAdapterVersion("zenhba9"), HostCtlException);
    EXPECT_EQ(ZenkCtl::Hardware::CpuInfoImpl(store).GetNumCpuPackages(), 2u);
    ZenkCtl::Hardware::MemoryInfoImpl memory(store);
    EXPECT_EQ(memory.GetTotalPages() * memory.GetPageSize(), 16ull << 30);
    store->Update([](json& d) { d["hardware"]["memory"]["totalPages"] = -5; });
    EXPECT_THROW(memory.GetTotalPages(), HostCtlException);
}

// What the store holds reaches the operator's screens in the end-to-end tests (the serial number, audit
// mode, a card's user, the keyboard layout, the firewall, running machines); here is what is refused.
TEST_F(SystemTest, UnknownCardsLayoutsAndRulesetsAreRefused) {
    HostCtl::Hardware::SmartCardToken token;
    EXPECT_THROW(ZenkCtl::Hardware::SmartCardInfoImpl(store).GetToken({7, "ghost"}, token), HostCtlException);
    auto system = ZenkCtl::HalvorHostFactory(store).GetSystemInfo();
    system->LoadKeyboardMappings("German");
    system->SetKeyboardLayout("German");
    EXPECT_THROW(system->SetKeyboardLayout("Klingon"), HostCtlException);
    EXPECT_EQ(system->GetKeyboardLayout(), "German");
    EXPECT_THROW(system->GetFirewallRulesetById("nope"), HostCtlException);
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
