#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "TempDir.h"
#include "platform/events/HlvAudit.h"
#include "platform/events/ObsUserLib.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/store/HostStore.h"
#include "platform/zenkctl/AdvancedOptionImpl.h"
#include "platform/zenkctl/UserAdvancedOptionImpl.h"

using HostCtl::Lib::HostCtlException;
using nlohmann::json;
using ZenkCtl::Store::HostStore;

namespace {

std::shared_ptr<HostStore> OptionStore(const TempDir& dir) {
    auto store = std::make_shared<HostStore>(dir.File("host.json"));
    store->Replace({{"advancedOptions",
                     {{"UserVars",
                       {{"KovoTimeOut", {{"type", "integer"}, {"value", 600}, {"min", 0}, {"max", 86400}}},
                        {"PXEBootEnabled", {{"type", "string"}, {"value", "1"}}}}},
                      {"Net", {{"TcpipHeapMax", {{"type", "integer"}, {"value", 512}}}}}}}});
    return store;
}

// A datagram socket bound at a path, standing in for a daemon of the host.
class Listener {
  public:
    explicit Listener(const std::string& path) {
        _fd = socket(AF_UNIX, SOCK_DGRAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::snprintf(address.sun_path, sizeof address.sun_path, "%s", path.c_str());
        _bound = bind(_fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
        timeval generous{10, 0};
        setsockopt(_fd, SOL_SOCKET, SO_RCVTIMEO, &generous, sizeof generous);
    }
    ~Listener() { close(_fd); }
    bool Bound() const { return _bound; }
    std::string Receive() {
        char buffer[8192];
        ssize_t n = recv(_fd, buffer, sizeof buffer, 0);
        return n < 0 ? std::string("<nothing>") : std::string(buffer, static_cast<size_t>(n));
    }

  private:
    int _fd;
    bool _bound;
};

}  // namespace

// Range, write-through and an unknown option are the platform contract's; here is how paths are found.
TEST(AdvancedOptionTest, OptionsAreFoundByPathFromTheRootOnlyLeavesAreOptionsAndAStoreMustBeRead) {
    TempDir dir;
    ZenkCtl::Adv::AdvancedOptionImpl options(OptionStore(dir));
    auto timeout = options.FindOption("/UserVars/KovoTimeOut");
    ASSERT_NE(timeout, nullptr);
    EXPECT_EQ(timeout->GetPath(), "/UserVars/KovoTimeOut");
    EXPECT_EQ(timeout->GetIntValue(), 600);
    EXPECT_NE(options.FindOption("Net/TcpipHeapMax"), nullptr);  // relative to the root
    EXPECT_EQ(options.FindOption("/UserVars"), nullptr);         // a folder is not an option
    EXPECT_EQ(options.FindOption(""), nullptr);
    // A store that cannot be read is an exception, not an option missing.
    ZenkCtl::Adv::AdvancedOptionImpl unreadable(std::make_shared<HostStore>(dir.File("absent.json")));
    EXPECT_THROW(unreadable.FindOption("/UserVars/KovoTimeOut"), HostCtlException);
}

TEST(AdvancedOptionTest, NonIntegerOptionsAndUserOptions) {
    TempDir dir;
    auto store = OptionStore(dir);
    ZenkCtl::Adv::UserAdvancedOptionImpl user(store);
    auto pxe = user.FindOption("PXEBootEnabled");
    ASSERT_NE(pxe, nullptr);
    EXPECT_EQ(pxe->GetPath(), "/UserVars/PXEBootEnabled");
    EXPECT_FALSE(pxe->IsInteger());
    EXPECT_EQ(pxe->GetStringValue(), "1");
    EXPECT_THROW(pxe->GetIntValue(), HostCtlException);
    EXPECT_THROW(pxe->SetIntValue(3), HostCtlException);
    EXPECT_NE(user.FindOption("/UserVars/KovoTimeOut"), nullptr);
    EXPECT_EQ(user.FindOption("TcpipHeapMax"), nullptr);  // only under /UserVars

    // An option removed after it was found reports that, not a crash or a stale value.
    auto timeout = user.FindOption("KovoTimeOut");
    store->Update([](json& d) { d["advancedOptions"]["UserVars"].erase("KovoTimeOut"); });
    EXPECT_THROW(timeout->GetIntValue(), HostCtlException);
    EXPECT_THROW(timeout->SetIntValue(5), HostCtlException);
}

TEST(HostEventsTest, InitFailsWithoutDaemonAndDeliversEventsIntactWithOne) {
    TempDir dir;
    const std::string path = dir.File("obsd.sock");
    EXPECT_NE(ObsUserLib_InitAt(path.c_str()), 0);
    EXPECT_NE(ObsUserLib_AddEvent("lost"), 0);  // not connected

    Listener daemon(path);
    ASSERT_TRUE(daemon.Bound());
    ASSERT_EQ(ObsUserLib_InitAt(path.c_str()), 0);
    const std::string event = "@&!*@*@(obs.user.kovo.network.restart)Restarting zk0 – ünïcode";
    EXPECT_EQ(ObsUserLib_AddEvent(event.c_str()), 0);
    EXPECT_EQ(ObsUserLib_AddEvent("second"), 0);
    EXPECT_EQ(daemon.Receive(), event);
    EXPECT_EQ(daemon.Receive(), "second");
    ObsUserLib_Close();
    EXPECT_NE(ObsUserLib_AddEvent("after close"), 0);
}

TEST(AuditTest, RecordsArriveFormattedOnePerDatagram) {
    TempDir dir;
    const std::string path = dir.File("auditd.sock");
    Listener daemon(path);
    ASSERT_TRUE(daemon.Bound());
    HlvAudit_SetSocketPath(path.c_str());
    HlvAudit_Log("User %s logged in from console %d", "root", 2);
    HlvAudit_Log("%s", "plain");
    EXPECT_EQ(daemon.Receive(), "User root logged in from console 2");
    EXPECT_EQ(daemon.Receive(), "plain");
    HlvAudit_SetSocketPath(nullptr);
}
