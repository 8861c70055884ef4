// Words for a command line that a shell may read: quoted only where a shell would act on them, and read
// back the same by a platform that runs command lines without a shell; and the lines and words of the
// host's text files.
#include <gtest/gtest.h>

#include "platform/hostctl/NetworkInfo.h"
#include "platform/hostctl/ShellWords.h"
#include "platform/hostctl/TextFields.h"

using HostCtl::QuoteShellWord;
using HostCtl::SplitShellWords;

namespace {

TEST(ShellWords, PlainWordsStayAsTheyAreAndTheRestComeBackWhole) {
    EXPECT_EQ(QuoteShellWord("zk0"), "zk0");
    EXPECT_EQ(QuoteShellWord("fe80::1%zk0"), "fe80::1%zk0");
    EXPECT_EQ(QuoteShellWord("zk0;echo INJECTED;#"), "'zk0;echo INJECTED;#'");
    EXPECT_EQ(QuoteShellWord("a'b"), "'a'\\''b'");
    EXPECT_EQ(QuoteShellWord(""), "''");
    const std::vector<std::string> words{
        "/bin/zenkping", "-I", "zk0;echo INJECTED;#", "$(reboot)", "a'b", "", "x y"};
    std::string line;
    for (const std::string& word : words) line += (line.empty() ? "" : " ") + QuoteShellWord(word);
    EXPECT_EQ(SplitShellWords(line), words) << line;
    EXPECT_EQ(SplitShellWords("/bin/zenkping -c 3  10.20.30.1"),
              (std::vector<std::string>{"/bin/zenkping", "-c", "3", "10.20.30.1"}));
}

TEST(ShellWords, ALineThatAsksAShellForMoreIsNotSplit) {
    for (const char* line : {"ping zk0;reboot", "ping $(reboot)", "ping `reboot`", "ping 'open", "ping \"x\"",
                             "ping x | sh", "ping x > /etc/hosts", "ping *", "ping x\nreboot", "ping x\\"})
        EXPECT_FALSE(SplitShellWords(line).has_value()) << line;
}

TEST(InterfaceNames, OnlyNamesTheKernelWouldGiveAnInterface) {
    for (const char* name : {"zk0", "ens3", "br-lab.10", "a", "fifteen-chars-x", "zk0;reboot"})
        EXPECT_TRUE(HostCtl::Network::IsValidInterfaceName(name)) << name;
    for (const char* name :
         {"", ".", "..", "sixteen-chars-xx", "zk0;echo INJECTED;#", "a/b", "zk0:1", "tab\tx"})
        EXPECT_FALSE(HostCtl::Network::IsValidInterfaceName(name)) << name;
}

TEST(TextFields, LinesAndWordsAsAFileHoldsThem) {
    using Texts = std::vector<std::string>;
    EXPECT_EQ(HostCtl::Lines(""), Texts{});
    EXPECT_EQ(HostCtl::Lines("a\n"), Texts{"a"});
    EXPECT_EQ(HostCtl::Lines("a\n\nb"), (Texts{"a", "", "b"}));
    EXPECT_EQ(HostCtl::Lines("\n"), Texts{""});
    EXPECT_EQ(HostCtl::Words(""), Texts{});
    EXPECT_EQ(HostCtl::Words(" \t "), Texts{});
    EXPECT_EQ(HostCtl::Words("nameserver\t10.0.0.1  # x\r"), (Texts{"nameserver", "10.0.0.1", "#", "x"}));
}

}  // namespace
