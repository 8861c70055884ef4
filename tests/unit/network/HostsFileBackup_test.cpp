// The resolve test's backup of the hosts file: the file comes back byte for byte whichever console puts
// it back, a leftover backup is never overwritten, and a backup another console holds is left to it.
#include "network/HostsFileBackup.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <vector>

#include "../platform/TempDir.h"
#include "../support/Recording.h"
#include "platform/hostctl/HostsTable.h"
#include "platform/hostctl/WholeFile.h"

namespace Kovo {
namespace {

namespace fs = std::filesystem;
using HostCtl::ReadWholeFile;

constexpr const char* kWhole = "# kept as is\n127.0.0.1\tlocalhost\n192.0.2.10 h1.lab.example h1\t# mgmt\n";
constexpr const char* kNameOut = "# kept as is\n127.0.0.1\tlocalhost\n192.0.2.10\th1 # mgmt\n";

class HostsFileBackupTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::ofstream(paths.hosts) << kWhole;
        Testing::CaptureLog(&log);
    }
    void TearDown() override { Testing::ReleaseLog(&log); }

    // What a console killed with the name out leaves behind.
    void LeaveKilledConsolesFiles() {
        std::ofstream(paths.backup) << kWhole;
        std::ofstream(paths.hosts, std::ios::trunc) << kNameOut;
    }
    // Holds the lock as another console's running test does.
    int HoldLock() {
        const int fd = ::open(paths.lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        EXPECT_EQ(::flock(fd, LOCK_EX | LOCK_NB), 0);
        return fd;
    }

    TempDir dir;
    HostsFileBackup::Paths paths{dir.File("hosts"), dir.File("hosts.backup"), dir.File("hosts.lock")};
    HostCtl::Network::HostsTable file{paths.hosts};
    std::vector<std::string> log;
};

TEST_F(HostsFileBackupTest, TakesTheNameOutAndPutsTheFileBackByteForByte) {
    HostsFileBackup backup(paths);
    ASSERT_TRUE(backup.TakeNameOut(file, "H1.lab.example"));
    EXPECT_TRUE(backup.NameOut());
    EXPECT_EQ(ReadWholeFile(paths.hosts), kNameOut);
    EXPECT_EQ(ReadWholeFile(paths.backup), kWhole);
    // Another console meanwhile: its test cannot run, and its start-up leaves the backup to this one.
    HostsFileBackup other(paths);
    EXPECT_FALSE(other.TakeNameOut(file, "h1.lab.example"));
    EXPECT_FALSE(other.PutBackLeftover());
    EXPECT_EQ(ReadWholeFile(paths.backup), kWhole);

    ASSERT_TRUE(backup.PutBack());
    EXPECT_FALSE(backup.NameOut());
    EXPECT_EQ(ReadWholeFile(paths.hosts), kWhole);
    EXPECT_FALSE(fs::exists(paths.backup)) << "a backup left after the put-back would count as a leftover";
    // The lock is free again.
    EXPECT_TRUE(other.TakeNameOut(file, "h1.lab.example"));
    EXPECT_TRUE(other.PutBack());
    EXPECT_EQ(log, std::vector<std::string>{"error: failed to backup " + paths.hosts +
                                            ": another console is testing name resolution"});
}

TEST_F(HostsFileBackupTest, ANameTheFileDoesNotHoldLeavesNoBackup) {
    HostsFileBackup backup(paths);
    EXPECT_TRUE(backup.TakeNameOut(file, "elsewhere.lab.example"));
    EXPECT_FALSE(backup.NameOut());
    EXPECT_EQ(ReadWholeFile(paths.hosts), kWhole);
    EXPECT_FALSE(fs::exists(paths.backup));
    EXPECT_TRUE(HostsFileBackup(paths).TakeNameOut(file, "h1.lab.example")) << "the lock was kept";
}

TEST_F(HostsFileBackupTest, AKilledConsolesBackupIsPutBackAtStartAndNeverOverwritten) {
    LeaveKilledConsolesFiles();
    EXPECT_TRUE(HostsFileBackup(paths).PutBackLeftover());
    EXPECT_EQ(ReadWholeFile(paths.hosts), kWhole);
    EXPECT_FALSE(fs::exists(paths.backup));
    EXPECT_FALSE(HostsFileBackup(paths).PutBackLeftover()) << "nothing is left to put back";

    // A console whose start-up did not run (an older one): its test puts the leftover back before it
    // takes a backup of its own.
    LeaveKilledConsolesFiles();
    HostsFileBackup backup(paths);
    ASSERT_TRUE(backup.TakeNameOut(file, "h1.lab.example"));
    EXPECT_EQ(ReadWholeFile(paths.backup), kWhole);
    ASSERT_TRUE(backup.PutBack());
    EXPECT_EQ(ReadWholeFile(paths.hosts), kWhole);

    // A leftover while another console's test holds the lock is that console's own backup.
    LeaveKilledConsolesFiles();
    const int held = HoldLock();
    EXPECT_FALSE(HostsFileBackup(paths).PutBackLeftover());
    EXPECT_EQ(ReadWholeFile(paths.hosts), kNameOut);
    EXPECT_EQ(ReadWholeFile(paths.backup), kWhole);
    ::close(held);
    EXPECT_TRUE(HostsFileBackup(paths).PutBackLeftover());
    EXPECT_EQ(ReadWholeFile(paths.hosts), kWhole);
    EXPECT_EQ(log, (std::vector<std::string>(2, "log: Put back " + paths.hosts + " from " + paths.backup +
                                                    " left by an interrupted resolve test")));
}

TEST_F(HostsFileBackupTest, ABackupThatCannotBeMadeOrPutBackLeavesTheFileAlone) {
    // No backup can be written: the test does not run and the file is untouched.
    fs::create_directory(paths.backup);
    HostsFileBackup backup(paths);
    EXPECT_FALSE(backup.TakeNameOut(file, "h1.lab.example"));
    EXPECT_EQ(ReadWholeFile(paths.hosts), kWhole);
    fs::remove(paths.backup);

    // The backup vanished while the name was out: the console neither retries nor takes a name out again.
    ASSERT_TRUE(backup.TakeNameOut(file, "h1.lab.example"));
    fs::remove(paths.backup);
    fs::create_directory(paths.backup);
    EXPECT_FALSE(backup.PutBack());
    EXPECT_TRUE(backup.Stuck());
    EXPECT_FALSE(backup.TakeNameOut(file, "h1.lab.example"));
    EXPECT_EQ(log, (std::vector<std::string>{
                       "error: failed to backup " + paths.hosts + ": Is a directory",
                       "error: failed to restore " + paths.hosts + ": Is a directory",
                       "error: " + paths.hosts +
                           " was not put back after an earlier resolve test; it is left alone",
                   }));
}

}  // namespace
}  // namespace Kovo
