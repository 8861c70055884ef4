// What the console's host programs become on a Linux host, and the jobs the host tool does without a
// service manager: options, the shell's idle time-out, virtual machines on libvirt's test driver,
// keyboard layouts and alerts.
#include <gtest/gtest.h>

#include <fstream>

#include "LinuxHostTree.h"
#include "TempDir.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/linux/LinuxPrograms.h"
#include "platform/linux/LinuxSystemInfo.h"
#include "platform/linux/hosttool/HostTool.h"
#include "platform/linux/hosttool/VirtualMachines.h"

using HostCtl::Program;
using LinuxHost::LinuxPrograms;

namespace {

std::vector<std::string> Tool(std::vector<std::string> args) {
    args.insert(args.begin(), "kovo-host");
    return args;
}

TEST(LinuxPrograms, EachDocumentedProgramBecomesTheHostsWayOfDoingItsJob) {
    const LinuxPrograms programs;
    const struct {
        Program documented;
        Program expected;
    } cases[] = {
        {{"/bin/hcl-cmd", {"hcl-cmd", "-U", "root", "hostsvc/start_ssh"}},
         {LinuxPrograms::kHostTool, Tool({"service", "ssh", "start"})}},
        {{"/bin/hcl-cmd", {"hcl-cmd", "-U", "root", "hclsvc/auth/lockdown_mode_enter"}},
         {LinuxPrograms::kHostTool, Tool({"unavailable", "Lockdown mode"})}},
        {{"/bin/hcl-cmd", {"hcl-cmd", "-U", "root", "internalsvc/refresh"}}, {"/bin/true", {"true"}}},
        {{"/bin/sh", {"sh", "/etc/init.d/SSH", "status"}},
         {LinuxPrograms::kHostTool, Tool({"service", "ssh", "status"})}},
        {{"/bin/sh", {"sh", "-c", "reboot"}}, {LinuxPrograms::kHostTool, Tool({"power", "reboot"})}},
        {{"/bin/powerOffVms", {"powerOffVms", "--terminate"}},
         {LinuxPrograms::kHostTool, Tool({"vms", "shutdown", "--force"})}},
        {{"/sbin/powerOffVms", {"powerOffVms"}}, {LinuxPrograms::kHostTool, Tool({"vms", "shutdown"})}},
        {{"/sbin/qorcfg-advcfg", {"qorcfg-advcfg", "-q", "-g", "/UserVars/QoriShellTimeOut"}},
         {LinuxPrograms::kHostTool, Tool({"option", "get", "/UserVars/QoriShellTimeOut"})}},
        {{"/sbin/qorlocalcli",
          {"qorlocalcli", "system", "settings", "advanced", "set", "-o", "/UserVars/QoriShellTimeOut", "-i",
           "600"}},
         {LinuxPrograms::kHostTool, Tool({"option", "set", "/UserVars/QoriShellTimeOut", "600"})}},
        {{"/bin/less", {"less", "/var/log/syslog.log"}}, {LinuxPrograms::kHostTool, Tool({"log", "syslog"})}},
        {{"/bin/less", {"less", "-cfP", "<Q> Quit", "/var/log/zenkernel.log"}},
         {LinuxPrograms::kHostTool, Tool({"log", "kernel", "-cfP", "<Q> Quit"})}},
        {{"/bin/less", {"less", "/var/log/obsd.log"}}, {"/usr/bin/less", {"less", "/var/log/obsd.log"}}},
        {{"/sbin/backup.sh", {"backup.sh"}}, {"/bin/true", {"true"}}},
        {{"/bin/sh", {"sh", "-c", "/sbin/firmwareConfig.py --reset-only > /dev/null 2>&1"}},
         {LinuxPrograms::kHostTool, Tool({"unavailable", "Resetting the configuration"})}},
        // A shell line the table does not know is run as written, never widened into something else.
        {{"/bin/sh", {"sh", "-c", "poweroff; rm -rf /"}}, {"/bin/sh", {"sh", "-c", "poweroff; rm -rf /"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.documented.argv.back());
        const Program resolved = programs.Resolve(c.documented);
        EXPECT_EQ(resolved.path, c.expected.path);
        EXPECT_EQ(resolved.argv, c.expected.argv);
    }
}

TEST(LinuxPrograms, CommandLinesRunWithoutAShellOrNotAtAll) {
    const auto agents = LinuxPrograms::ResolveCommandLine("/bin/sh /sbin/services.sh stop");
    ASSERT_TRUE(agents);
    EXPECT_EQ(agents->argv, Tool({"agents", "stop"}));
    const auto ping = LinuxPrograms::ResolveCommandLine("/bin/zenkping -c 3 -I br0 192.168.77.1");
    ASSERT_TRUE(ping);
    EXPECT_EQ(ping->path, "/usr/bin/ping");
    EXPECT_EQ(ping->argv, (std::vector<std::string>{"ping", "-c", "3", "-I", "br0", "192.168.77.1"}));
    EXPECT_FALSE(LinuxPrograms::ResolveCommandLine("/sbin/firmwareConfig.py --reset-only"));
    EXPECT_FALSE(LinuxPrograms::ResolveCommandLine("/bin/sh /sbin/services.sh stop; reboot"));

    EXPECT_EQ(LinuxPrograms::RunDetached({"/bin/sh", {"sh", "-c", "exit 7"}}), 7);
    EXPECT_EQ(LinuxPrograms::RunDetached({"/no/such/program", {"x"}}), 127);
}

class HostToolTest : public ::testing::Test {
  protected:
    TempDir dir;
    LinuxHostTree tree{dir};
    LinuxHost::HostTool tool{tree.Files()};

    std::string Output(const std::vector<std::string>& args, int* status = nullptr) {
        testing::internal::CaptureStdout();
        const int result = tool.Run(args);
        if (status) *status = result;
        return testing::internal::GetCapturedStdout();
    }
};

TEST_F(HostToolTest, TimeOutsAreKeptAndTheIdleOneReachesLoginShells) {
    EXPECT_EQ(Output({"option", "get", "/UserVars/QoriShellTimeOut"}), "0\n");
    EXPECT_EQ(tool.Run({"option", "set", "/UserVars/QoriShellTimeOut", "900"}), 0);
    EXPECT_EQ(Output({"option", "get", "/UserVars/QoriShellTimeOut"}), "900\n");

    EXPECT_EQ(tool.Run({"option", "set", "/UserVars/QoriShellInteractiveTimeOut", "300"}), 0);
    const auto profile = tree.Files().Read("/etc/profile.d/kovo-shell-timeout.sh");
    ASSERT_TRUE(profile);
    EXPECT_NE(profile->find("TMOUT=300\n"), std::string::npos);
    EXPECT_EQ(tool.Run({"option", "set", "/UserVars/QoriShellInteractiveTimeOut", "0"}), 0);
    EXPECT_FALSE(tree.Files().Exists("/etc/profile.d/kovo-shell-timeout.sh"));

    // Out of range, not a number, or no such option: refused, and the kept value stays.
    EXPECT_EQ(tool.Run({"option", "set", "/UserVars/QoriShellTimeOut", "86401"}), 1);
    EXPECT_EQ(tool.Run({"option", "set", "/UserVars/QoriShellTimeOut", "12abc"}), 2);
    EXPECT_EQ(tool.Run({"option", "set", "/UserVars/NoSuch", "1"}), 2);
    EXPECT_EQ(Output({"option", "get", "/UserVars/QoriShellTimeOut"}), "900\n");
}

TEST_F(HostToolTest, LockdownIsNeverOnAndUnknownJobsAreRefused) {
    EXPECT_EQ(Output({"query", "lockdown-enabled"}), "false\n");
    EXPECT_EQ(tool.Run({"unavailable", "Lockdown mode"}), 1);
    EXPECT_EQ(tool.Run({}), 2);
    EXPECT_EQ(tool.Run({"service", "telnet", "start"}), 2);
    EXPECT_EQ(tool.Run({"power", "sideways"}), 2);
    EXPECT_EQ(tool.Run({"vms", "shutdown", "--gently"}), 2);
    EXPECT_EQ(LinuxHost::HostTool::UnitOf("ssh"), "ssh.service");
    EXPECT_TRUE(LinuxHost::HostTool::JournalOf("observation").empty());
    EXPECT_EQ(LinuxHost::HostTool::JournalOf("kernel").back(), "--dmesg");
}

// libvirt's test driver starts with one running machine in every new connection; counting it, and a
// hypervisor that cannot be asked, are the resource tests' below.
TEST(VirtualMachines, RunningMachinesAreAskedToShutDown) {
    EXPECT_EQ(LinuxHost::VirtualMachines("test:///default").ShutDown(false, 5), 0);
}

// The console runs host programs in an environment of its own making, without the hypervisor its unit
// names: the shutdown carries it on its command line. Run without it, the tool would ask the system's
// hypervisor, which this machine does not run and which so counts as running nothing.
TEST(LinuxPrograms, TheMachinesShutDownAreThoseOfTheHypervisorTheConsoleWasToldOf) {
    const auto shutdown = [](const char* uri) {
        setenv("LIBVIRT_DEFAULT_URI", uri, 1);
        const Program resolved = LinuxPrograms().Resolve({"/sbin/powerOffVms", {"powerOffVms"}});
        unsetenv("LIBVIRT_DEFAULT_URI");
        return LinuxPrograms::RunDetached({KOVO_HOST_TOOL, resolved.argv});
    };
    EXPECT_EQ(shutdown("test:///default"), 0);
    EXPECT_NE(shutdown("test:///no/such/file.xml"), 0) << "a hypervisor that cannot be asked was not asked";
    EXPECT_EQ(LinuxPrograms().Resolve({"/sbin/powerOffVms", {"powerOffVms"}}).argv,
              Tool({"vms", "shutdown"}));
}

// The console asks the host tool, in a process of its own, and tells its three answers apart.
TEST(LinuxResourceInfo, TheHostToolSaysWhetherMachinesRunOrWhyItCannotTell) {
    const auto running = [](const char* uri, const std::string& tool = KOVO_HOST_TOOL) {
        setenv("LIBVIRT_DEFAULT_URI", uri, 1);
        struct Unset {
            ~Unset() { unsetenv("LIBVIRT_DEFAULT_URI"); }
        } unset;
        return LinuxHost::LinuxResourceInfo(tool).HasRunningVirtualMachines();
    };
    EXPECT_TRUE(running("test:///default"));
    EXPECT_FALSE(running("test://" KOVO_FIXTURES "/libvirt-no-machines.xml"));
    try {
        running("test:///no/such/file.xml");
        ADD_FAILURE() << "a hypervisor that cannot be asked is not a host without machines";
    } catch (const HostCtl::Lib::HostCtlException& e) {
        EXPECT_EQ(std::string(e.what()).rfind("The hypervisor service does not answer: ", 0), 0u) << e.what();
    }
    EXPECT_THROW(running("test:///default", "/no/such/kovo-host"), HostCtl::Lib::HostCtlException);
}

class LinuxSystemInfoTest : public ::testing::Test {
  protected:
    TempDir dir;
    LinuxHostTree tree{dir};
    // No call here may reach the system bus.
    LinuxHost::LinuxSystemInfo info{tree.Files(), []() -> std::unique_ptr<LinuxHost::SystemServices> {
                                        throw HostCtl::Lib::HostCtlException("no bus in tests");
                                    }};
};

TEST_F(LinuxSystemInfoTest, OnlyLayoutsTheHostHasAndCanPutOnItsConsolesAreOffered) {
    tree.Write("/usr/share/X11/xkb/symbols/us", "");
    tree.Write("/usr/share/X11/xkb/symbols/ch", "");
    tree.Write("/usr/share/X11/xkb/symbols/de", "");
    // Without console-setup no console would follow the choice.
    EXPECT_TRUE(info.GetKeyboardLayouts().empty());
    tree.Write("/bin/setupcon", "");
    EXPECT_EQ(info.GetKeyboardLayouts(), (std::vector<std::string>{"German", "Swiss French", "Swiss German",
                                                                   "US Default", "US Dvorak"}));
    EXPECT_THROW(info.SetKeyboardLayout("Klingon"), HostCtl::Lib::HostCtlException);
    EXPECT_THROW(info.LoadKeyboardMappings("Klingon"), HostCtl::Lib::HostCtlException);
}

TEST(LinuxKeyboardLayout, TheHostsLayoutAndVariantGetTheConsolesNameOrKeepTheirOwn) {
    using LinuxHost::LinuxSystemInfo;
    EXPECT_EQ(LinuxSystemInfo::LayoutName("ch", "fr"), "Swiss French");
    EXPECT_EQ(LinuxSystemInfo::LayoutName("ch", ""), "Swiss German");
    EXPECT_EQ(LinuxSystemInfo::LayoutName("us", "dvorak"), "US Dvorak");
    EXPECT_EQ(LinuxSystemInfo::LayoutName("", ""), "US Default");
    EXPECT_EQ(LinuxSystemInfo::LayoutName("us", "intl"), "us(intl)");
    EXPECT_EQ(LinuxSystemInfo::LayoutName("fo", ""), "fo");
}

TEST_F(LinuxSystemInfoTest, NoFirewallRulesetsAndTheJournalsLogs) {
    EXPECT_THROW(info.GetFirewallRulesetById("sshServer"), HostCtl::Lib::HostCtlException);
    // The journal keeps the system, kernel, boot and agent logs; the agents this host lacks have none.
    EXPECT_TRUE(info.IsLogKept("/var/log/syslog.log"));
    EXPECT_TRUE(info.IsLogKept("/var/log/hagentd.log"));
    EXPECT_FALSE(info.IsLogKept("/var/log/obsd.log"));
}

}  // namespace
