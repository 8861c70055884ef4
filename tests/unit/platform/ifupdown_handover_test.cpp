// What a take-over from ifupdown records, and when it puts ifupdown's file back, on a host tree of files.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <sstream>
#include <string>

#include "LinuxHostTree.h"
#include "TempDir.h"
#include "platform/hostctl/HostCtlException.h"
#include "platform/linux/IfupdownHandover.h"

namespace LinuxHost {
namespace {

const std::string kFile =
    "auto lo\niface lo inet loopback\n\nallow-hotplug ens3\niface ens3 inet dhcp\n\niface ens4 inet manual\n";
const std::string kWithout = "auto lo\niface lo inet loopback\n\n\niface ens4 inet manual\n";

class IfupdownHandoverTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::create_directories(dir_.Path() / "etc/network");
        Put("/etc/network/interfaces", kFile);
    }
    void Put(const std::string& path, const std::string& text) {
        std::ofstream(dir_.File(path.substr(1))) << text;
    }
    std::string Get(const std::string& path) {
        std::ostringstream text;
        text << std::ifstream(dir_.File(path.substr(1))).rdbuf();
        return text.str();
    }
    TempDir dir_;
    IfupdownHandover handover_{HostFiles(dir_.Path())};
    LinuxHostTree::Kernel kernel_;
};

TEST_F(IfupdownHandoverTest, AHandOverRecordsTheFileForRootAloneAndLeavesTheOtherStanzas) {
    EXPECT_TRUE(handover_.Configures("ens3"));
    EXPECT_FALSE(handover_.Configures("ens5"));
    EXPECT_FALSE(handover_.Pending());
    // The route out goes with the record: a put-back that leaves the address but not the route is no
    // put-back.
    kernel_.routes = {{"ens3", AF_INET, "192.168.77.1", 0}, {"ens4", AF_INET6, "fe80::1", 0}};
    handover_.HandOver({"ens3", "ens4"}, {"uuid-1"}, kernel_);
    EXPECT_EQ(Get("/etc/network/interfaces"), "auto lo\niface lo inet loopback\n\n\n");
    ASSERT_TRUE(handover_.Pending());
    const IfupdownHandover::Record record = handover_.Read();
    EXPECT_EQ(record.interfaces, (std::set<std::string>{"ens3", "ens4"}));
    EXPECT_EQ(record.routed, std::set<std::string>{"ens3"});
    EXPECT_EQ(record.profiles, std::set<std::string>{"uuid-1"});
    EXPECT_EQ(record.before, kFile);
    EXPECT_EQ(record.written, "auto lo\niface lo inet loopback\n\n\n");
    EXPECT_FALSE(record.keeping);
    struct stat status {};
    ASSERT_EQ(::stat(dir_.File("var/lib/kovo/ifupdown-handover").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);

    handover_.MarkKeeping();
    EXPECT_TRUE(handover_.Read().keeping);
    EXPECT_EQ(handover_.Read().before, kFile);
    handover_.Forget();
    EXPECT_FALSE(handover_.Pending());
}

// The file goes back only as the hand-over left it: an operator's later edit is theirs.
TEST_F(IfupdownHandoverTest, TheFileIsPutBackOnlyWhenNobodyChangedItSince) {
    handover_.HandOver({"ens3"}, {}, kernel_);
    handover_.RestoreFile(handover_.Read());
    EXPECT_EQ(Get("/etc/network/interfaces"), kFile);

    handover_.HandOver({"ens3"}, {}, kernel_);
    const std::string edited = kWithout + "iface ens9 inet dhcp\n";
    Put("/etc/network/interfaces", edited);
    try {
        handover_.RestoreFile(handover_.Read());
        ADD_FAILURE() << "an edited file was overwritten";
    } catch (const HostCtl::Lib::HostCtlException& e) {
        EXPECT_STREQ(e.what(),
                     "/etc/network/interfaces was changed after the console took the management network over "
                     "from ifupdown: it is left as it is");
    }
    EXPECT_EQ(Get("/etc/network/interfaces"), edited);
}

// A record cut short or written by hand is refused in words naming it, not taken as an empty one.
TEST_F(IfupdownHandoverTest, ARecordThatCannotBeReadWholeIsRefusedInWords) {
    handover_.HandOver({"ens3"}, {}, kernel_);
    const std::string good = Get("/var/lib/kovo/ifupdown-handover");
    for (const std::string& bad :
         {good.substr(0, good.size() / 2), std::string("{\"interfaces\": [\"ens3\"]}"),
          std::string("{\"interfaces\": 3, \"profiles\": [], \"before\": \"\", "
                      "\"written\": \"\", \"keeping\": false}"),
          std::string()}) {
        Put("/var/lib/kovo/ifupdown-handover", bad);
        try {
            handover_.Read();
            ADD_FAILURE() << "read: " << bad;
        } catch (const HostCtl::Lib::HostCtlException& e) {
            EXPECT_EQ(
                std::string(e.what()).rfind(
                    "Cannot read what was taken over from ifupdown (/var/lib/kovo/ifupdown-handover): ", 0),
                0u)
                << e.what();
        }
    }
}

}  // namespace
}  // namespace LinuxHost
