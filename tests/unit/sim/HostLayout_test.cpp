#include "launcher/HostLayout.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "helpers/Subprocess.h"

using KovoSim::HostLayout;
using KovoSim::Test::TempDir;

namespace {

TEST(HostLayoutTest, RelativeDirectoryIsTakenFromTheWorkingDirectory) {
    TempDir dir;
    const auto previous = std::filesystem::current_path();
    std::filesystem::current_path(dir.Path());
    const HostLayout layout("sim-host");
    std::filesystem::current_path(previous);
    EXPECT_EQ(layout.Dir(), std::filesystem::canonical(dir.Path()).string() + "/sim-host");
}

TEST(HostLayoutTest, RejectsDirectoriesThatCannotCarryTheOverlays) {
    TempDir dir;
    for (const std::string& bad :
         {dir / "a,b", dir / "a:b", std::string("/"), std::string("/etc/sim"), std::string("/usr"),
          std::string("/var"), std::string("/var/log/x"), std::string("/usr/lib/kovo"), std::string("")}) {
        EXPECT_THROW(HostLayout{bad}, std::invalid_argument) << bad;
    }
    // A symbolic link is followed before the check.
    std::filesystem::create_directory_symlink("/usr/lib", dir / "link");
    EXPECT_THROW(HostLayout{dir / "link/host"}, std::invalid_argument);
    // Names that only start like an overlaid directory are fine.
    EXPECT_NO_THROW(HostLayout{"/etcetera/host"});
    EXPECT_NO_THROW(HostLayout{"/var/lib/host"});
}

// The launcher takes a directory for a host only when every layer is there.
TEST(HostLayoutTest, ADirectoryMissingALayerIsNoHost) {
    TempDir dir;
    const HostLayout layout(dir / "host");
    EXPECT_FALSE(layout.Prepared());
    layout.Prepare();
    EXPECT_TRUE(layout.Prepared());
    std::filesystem::remove(layout.Work("/var/log"));
    EXPECT_FALSE(layout.Prepared());
}

}  // namespace
